#include "output_text.h"

#include "whole_characters.h"

#include <utility>

namespace {

constexpr QChar kEscape = u'\x1b';

bool EndsSequence(QChar c)
{
    return c >= u'@' && c <= u'~';
}

bool IsInSequence(QChar c)
{
    return c >= u' ' && c <= u'?';
}

}  // namespace

OutputChange OutputText::Feed(std::string_view bytes, qsizetype column)
{
    begun_ += bytes;
    const auto whole = WholeCharacters(begun_);
    const auto text = QString::fromUtf8(begun_.data(), static_cast<qsizetype>(whole));
    begun_.erase(0, whole);
    column_ = column;
    change_ = {};
    change_.text.reserve(text.size());
    for (const QChar c : text) {
        Take(c);
    }
    return std::move(change_);
}

void OutputText::Take(QChar c)
{
    switch (std::exchange(state_, State::Text)) {
        case State::Text: TakeText(c); return;
        case State::CarriageReturn:
            if (c == u'\r') {
                state_ = State::CarriageReturn;
                return;
            }
            if (c != u'\n') {
                StartLineAnew();
            }
            TakeText(c);
            return;
        case State::Escape:
            if (c == u'[') {
                state_ = State::Sequence;
                return;
            }
            change_.text += kEscape;
            ++column_;
            TakeText(c);
            return;
        case State::Sequence:
            if (IsInSequence(c)) {
                state_ = State::Sequence;
            } else if (!EndsSequence(c)) {
                TakeText(c);  // It was broken off.
            }
            return;
    }
}

void OutputText::TakeText(QChar c)
{
    if (c == u'\r') {
        state_ = State::CarriageReturn;
        return;
    }
    if (c == kEscape) {
        state_ = State::Escape;
        return;
    }
    if (c != u'\n' && column_ >= kMaxLineLength && !c.isLowSurrogate()) {
        change_.text += u'\n';
        column_ = 0;
    }
    change_.text += c;
    column_ = c == u'\n' ? 0 : column_ + 1;
}

void OutputText::StartLineAnew()
{
    const auto line = change_.text.lastIndexOf(u'\n') + 1;
    change_.erasesLastLine = change_.erasesLastLine || line == 0;
    change_.text.truncate(line);
    column_ = 0;
}

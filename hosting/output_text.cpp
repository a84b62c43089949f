#include "output_text.h"

#include "whole_characters.h"

#include <utility>

namespace {

constexpr QChar kEscape = u'\x1b';

bool IsFinalByte(QChar c)
{
    return c >= u'@' && c <= u'~';
}

bool IsParameterByte(QChar c)
{
    return c >= u' ' && c <= u'?';
}

}  // namespace

OutputChange OutputText::Feed(std::string_view bytes, qsizetype column)
{
    incomplete_ += bytes;
    const auto complete = WholeCharacters(incomplete_);
    const auto text = QString::fromUtf8(incomplete_.data(), static_cast<qsizetype>(complete));
    incomplete_.erase(0, complete);
    column_ = column;
    change_ = {};
    change_.text.reserve(text.size());
    for (const QChar c : text) {
        Process(c);
    }
    return std::move(change_);
}

void OutputText::Process(QChar c)
{
    switch (std::exchange(state_, State::Text)) {
        case State::Text: AppendCharacter(c); return;
        case State::CarriageReturn:
            if (c == u'\r') {
                state_ = State::CarriageReturn;
                return;
            }
            if (c != u'\n') {
                RestartLine();
            }
            AppendCharacter(c);
            return;
        case State::Escape:
            if (c == u'[') {
                state_ = State::ControlSequence;
                return;
            }
            change_.text += kEscape;
            ++column_;
            AppendCharacter(c);
            return;
        case State::ControlSequence:
            if (IsParameterByte(c)) {
                state_ = State::ControlSequence;
            } else if (!IsFinalByte(c)) {
                AppendCharacter(c);  // The sequence was aborted.
            }
            return;
    }
}

void OutputText::AppendCharacter(QChar c)
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

void OutputText::RestartLine()
{
    const auto line = change_.text.lastIndexOf(u'\n') + 1;
    change_.erasesLastLine = change_.erasesLastLine || line == 0;
    change_.text.truncate(line);
    column_ = 0;
}

#include "output_text.h"

#include "qt_version.h"
#include "whole_characters.h"

#include <algorithm>
#include <utility>

namespace {

constexpr QChar kEscape = u'\x1b';
constexpr QChar kBell = u'\x07';
constexpr std::size_t kMaxParameters = 256;  // bytes

bool IsFinalByte(QChar c)
{
    return c >= u'@' && c <= u'~';
}

bool IsParameterByte(QChar c)
{
    return c >= u' ' && c <= u'?';
}

// What follows an escape character.
bool StartsString(QChar c)
{
    return QStringView(u"]PX^_").contains(c);
}

bool StartsDesignation(QChar c)
{
    return c >= u' ' && c <= u'/';
}

}  // namespace

OutputChange OutputText::Feed(std::string_view bytes, qsizetype column)
{
    incomplete_ += bytes;
    const auto complete = WholeCharacters(incomplete_);
    const auto text = QString::fromUtf8(incomplete_.data(), static_cast<QtSize>(complete));
    incomplete_.erase(0, complete);
    column_ = column;
    change_ = {};
    change_.text.reserve(text.size());
    for (qsizetype at = 0; (at = AppendRun(text, at)) < text.size(); ++at) {
        Process(text[static_cast<QtSize>(at)]);
    }
    return std::move(change_);
}

void OutputText::Skip(std::string_view bytes)
{
    const auto complete = WholeCharacters(bytes);
    incomplete_ = bytes.substr(complete);
    bytes = bytes.substr(0, complete);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (state_ == State::Text) {
            at = std::min(bytes.find(kEscape.toLatin1(), at), bytes.size() - 1);
        }
        Process(QLatin1Char(bytes[at]));
    }
    change_ = {};
}

// Appends the characters up to the next one that needs more than that, and returns its index.
qsizetype OutputText::AppendRun(QStringView text, qsizetype at)
{
    if (state_ != State::Text || hasReturned_) {
        return at;
    }
    const auto rest = text.mid(at);
    const auto fitting = rest.left(std::clamp<qsizetype>(kMaxLineLength - column_, 0, rest.size()));
    const auto end = std::ranges::find_if(
        fitting, [](QChar c) { return c == u'\n' || c == u'\r' || c == kEscape; });
    const auto run = fitting.left(end - fitting.begin());
    if (!run.isEmpty()) {
        BeginStyle();
        change_.text.append(run.data(), static_cast<QtSize>(run.size()));
        column_ += run.size();
    }
    return at + run.size();
}

void OutputText::Process(QChar c)
{
    switch (std::exchange(state_, State::Text)) {
        case State::Text: return AppendCharacter(c);
        case State::Escape: return ProcessEscape(c);
        case State::ControlSequence: return ProcessControlSequence(c);
        case State::String: return ProcessString(c);
        case State::Designation:
            if (StartsDesignation(c)) {
                state_ = State::Designation;
            } else if (c < u'0' || c > u'~') {
                AppendCharacter(c);
            }
            return;
        case State::StringEscape:
            if (c != u'\\') {
                ProcessEscape(c);  // Another sequence has aborted the string.
            }
            return;
    }
}

void OutputText::ProcessEscape(QChar c)
{
    if (c == u'[') {
        state_ = State::ControlSequence;
        parameters_.clear();
    } else if (StartsString(c)) {
        state_ = State::String;
    } else if (StartsDesignation(c)) {
        state_ = State::Designation;
    } else {
        AppendStyled(kEscape);
        AppendCharacter(c);
    }
}

void OutputText::ProcessControlSequence(QChar c)
{
    if (IsParameterByte(c)) {
        state_ = State::ControlSequence;
        if (parameters_.size() < kMaxParameters) {
            parameters_ += static_cast<char>(c.unicode());
        }
    } else if (!IsFinalByte(c)) {
        AppendCharacter(c);  // The sequence was aborted.
    } else if (c == u'm') {
        style_ = ApplyParameters(style_, parameters_);
    }
}

// A line end also ends a string, so that an unfinished one does not hide all further output.
void OutputText::ProcessString(QChar c)
{
    if (c == u'\n' || c == u'\r') {
        AppendCharacter(c);
    } else if (c != kBell) {
        state_ = c == kEscape ? State::StringEscape : State::String;
    }
}

void OutputText::AppendCharacter(QChar c)
{
    if (c == u'\r') {
        hasReturned_ = true;
    } else if (c == kEscape) {
        state_ = State::Escape;
    } else {
        AppendStyled(c);
    }
}

void OutputText::AppendStyled(QChar c)
{
    if (std::exchange(hasReturned_, false) && c != u'\n') {
        RestartLine();
    }
    if (c != u'\n' && column_ >= kMaxLineLength && !c.isLowSurrogate()) {
        change_.text += u'\n';
        column_ = 0;
    }
    BeginStyle();
    change_.text += c;
    column_ = c == u'\n' ? 0 : column_ + 1;
}

void OutputText::BeginStyle()
{
    auto& parts = change_.parts;
    if (style_ != (parts.empty() ? TextStyle() : parts.back().style)) {
        parts.push_back({change_.text.size(), style_});
    }
}

void OutputText::RestartLine()
{
    const auto line = change_.text.lastIndexOf(u'\n') + 1;
    change_.erasesLastLine = change_.erasesLastLine || line == 0;
    change_.text.truncate(line);
    std::erase_if(change_.parts, [=](const auto& part) { return part.start >= line; });
    column_ = 0;
}

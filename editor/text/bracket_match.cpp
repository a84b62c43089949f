#include "bracket_match.h"

#include "scintilla_text.h"

#include <algorithm>
#include <string_view>

using Sci = QsciScintillaBase;

namespace {

constexpr long kMaxDistance = 100'000;  // bytes
constexpr std::string_view kOpening = "([{";
constexpr std::string_view kClosing = ")]}";

struct Bracket {
    char character, partner;
    int direction;  // Towards the partner.
};

std::optional<Bracket> BracketFor(char c)
{
    if (const auto at = kOpening.find(c); at != std::string_view::npos) {
        return Bracket{c, kClosing[at], 1};
    }
    if (const auto at = kClosing.find(c); at != std::string_view::npos) {
        return Bracket{c, kOpening[at], -1};
    }
    return std::nullopt;
}

char CharacterAt(const QsciScintilla& editor, long position)
{
    return static_cast<char>(Send(editor, Sci::SCI_GETCHARAT, position));
}

bool IsCodeBracket(const QsciScintilla& editor, long position)
{
    if (position < 0 || !BracketFor(CharacterAt(editor, position))) {
        return false;
    }
    const auto* const lexer = editor.lexer();
    return lexer == nullptr || Send(editor, Sci::SCI_GETSTYLEAT, position) == lexer->braceStyle();
}

std::optional<long> BracketAtCaret(const QsciScintilla& editor)
{
    const long caret = Send(editor, Sci::SCI_GETCURRENTPOS);
    for (const long position : {caret - 1, caret}) {
        if (IsCodeBracket(editor, position)) {
            return position;
        }
    }
    return std::nullopt;
}

// A part of a text with the style of each byte.
class StyledText {
  public:
    StyledText(const QsciScintilla& editor, long start, long end)
        : start_(start),
          cells_(2 * (end - start) + 2, Qt::Uninitialized),  // Terminated by two NULs.
          endOfStyles_(Send(editor, Sci::SCI_GETENDSTYLED))
    {
        editor.SendScintilla(Sci::SCI_GETSTYLEDTEXT, start, end, cells_.data());
    }

    char At(long position) const { return cells_.at(2 * (position - start_)); }

    // Text that is not styled yet may be code.
    bool IsStyled(long position, char style) const
    {
        return position >= endOfStyles_ || cells_.at(2 * (position - start_) + 1) == style;
    }

  private:
    long start_;
    QByteArray cells_;
    long endOfStyles_;
};

}  // namespace

std::optional<BracketMatch> MatchBracketAtCaret(const QsciScintilla& editor)
{
    const auto position = BracketAtCaret(editor);
    if (!position) {
        return std::nullopt;
    }
    const auto bracket = *BracketFor(CharacterAt(editor, *position));
    const auto style = static_cast<char>(Send(editor, Sci::SCI_GETSTYLEAT, *position));
    const bool isBackward = bracket.direction < 0;
    const long start = isBackward ? std::max(0L, *position - kMaxDistance) : *position;
    const long end =
        isBackward ? *position + 1 : std::min(Length(editor), *position + kMaxDistance);
    const StyledText text(editor, start, end);
    long depth = 0;
    for (long at = *position; at >= start && at < end; at += bracket.direction) {
        const char c = text.At(at);
        if ((c == bracket.character || c == bracket.partner) && text.IsStyled(at, style)) {
            depth += c == bracket.character ? 1 : -1;
            if (depth == 0) {
                return BracketMatch{*position, at};
            }
        }
    }
    const bool reachedEnd = isBackward ? start == 0 : end == Length(editor);
    return reachedEnd ? std::optional(BracketMatch{*position, std::nullopt}) : std::nullopt;
}

void MarkBracketsAtCaret(QsciScintilla& editor)
{
    const auto match = MatchBracketAtCaret(editor);
    if (match && !match->partner) {
        Send(editor, Sci::SCI_BRACEBADLIGHT, match->bracket);
        return;
    }
    const long none = -1;
    Send(editor, Sci::SCI_BRACEHIGHLIGHT, match ? match->bracket : none,
         match ? *match->partner : none);
}

#pragma once

#include "scintilla.h"

#include <optional>

// Which brackets belong together. Used on the user-interface thread.
struct BracketMatch {
    long bracket;                 // Before the caret, or else after it.
    std::optional<long> partner;  // None: the text has none.
};

// None when there is no bracket of code at the caret, and when the partner is further away than is
// searched at each movement of the caret: Scintilla's own search has no such end, and takes 70 ms
// in 5 MB for each bracket whose partner is not yet written.
std::optional<BracketMatch> MatchBracketAtCaret(const QsciScintilla& editor);

// Marks what MatchBracketAtCaret finds.
void MarkBracketsAtCaret(QsciScintilla& editor);

#pragma once

#include "scintilla.h"

#include <optional>

// The links to source files in a text, which an indicator marks. Positions count bytes. [ui]

inline constexpr int kLinkIndicator = 8;

// Marks the links on all lines that the range touches.
void MarkLinks(const QsciScintilla& editor, long start, long end);

// The start of the first link from a position on, or of the last one before it.
std::optional<long> FirstLinkFrom(const QsciScintilla& editor, long position);
std::optional<long> LastLinkBefore(const QsciScintilla& editor, long position);

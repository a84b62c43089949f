#pragma once

#include "document_file.h"
#include "scintilla.h"

#include <algorithm>
#include <array>

// What the editor knows of each line ending.
struct LineEndingRow {
    LineEnding ending;
    QsciScintilla::EolMode mode;
    const char* characters;
    const char* name;
};

inline constexpr std::array<LineEndingRow, 3> kLineEndings{{
    {LineEnding::Lf, QsciScintilla::EolUnix, "\n", "LF"},
    {LineEnding::CrLf, QsciScintilla::EolWindows, "\r\n", "CRLF"},
    {LineEnding::Cr, QsciScintilla::EolMac, "\r", "CR"},
}};

inline const LineEndingRow& RowOf(LineEnding ending)
{
    return *std::ranges::find(kLineEndings, ending, &LineEndingRow::ending);
}

// The line ending that the editor inserts.
inline const LineEndingRow& LineEndingOf(const QsciScintilla& editor)
{
    return *std::ranges::find(kLineEndings, editor.eolMode(), &LineEndingRow::mode);
}

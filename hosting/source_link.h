#pragma once

#include <QString>

#include <optional>

// A place in a source file, as a line of a traceback names it.
struct SourceLink {
    QString path;         // As it stands there: a board's own files have relative ones.
    int line = 0;         // From 1.
    qsizetype start = 0;  // Of the text from "File" to the number, in UTF-16 units.
    qsizetype length = 0;
};

// Finds `File "PATH", line N` and, with a full path, `File PATH, line N`. What stands in angle
// brackets, such as <stdin>, is no file. With a column (an index of a character of the line) only
// the link around it counts, without one the first.
std::optional<SourceLink> FindSourceLink(const QString& line, qsizetype column = -1);

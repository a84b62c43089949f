#pragma once

#include <QString>

#include <optional>

// A reference to a line of a source file, as tracebacks contain it. [any]
struct SourceLink {
    QString path;         // As written in the traceback; paths on a board may be relative.
    int line = 0;         // Counted from 1.
    qsizetype start = 0;  // The range from "File" to the number, in UTF-16 units.
    qsizetype length = 0;
};

// Finds `File "PATH", line N` and, with a full path, `File PATH, line N`. Names in angle brackets,
// such as <stdin>, are not files. Returns the link at the column (in UTF-16 units), or the first
// link if no column is given.
std::optional<SourceLink> FindSourceLink(const QString& line, qsizetype column = -1);

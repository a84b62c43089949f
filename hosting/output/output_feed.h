#pragma once

#include "output_text.h"

#include <QTimer>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// Passes output to a text in chunks, one in each iteration of the event loop, so that a flood of
// output does not freeze the windows. If too much output is pending, Append itself passes chunks,
// to slow the producer down. [ui]
class OutputFeed {
  public:
    // Returns the length of the text's last line in UTF-16 units.
    using Column = std::function<qsizetype()>;
    using Apply = std::function<void(const OutputChange& change)>;

    OutputFeed(Column column, Apply apply);

    void Append(std::string_view utf8);
    // Appends lines, beginning with a new one.
    void AppendLines(std::string_view utf8);
    // A program has ended: its colours, or its unfinished control sequence, end as well.
    void EndOutput() { Append("\x1b[m"); }
    // Passes everything that is pending.
    void Flush();
    // Forgets it instead.
    void Clear();

  private:
    void PassChunk();

    Column column_;
    Apply apply_;
    OutputText parser_;
    std::string pending_;
    std::size_t consumed_ = 0;  // Bytes at the front of `pending_` that have been passed.
    QTimer timer_;
};

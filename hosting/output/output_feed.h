#pragma once

#include "output_backlog.h"
#include "output_text.h"

#include <QTimer>

#include <functional>
#include <string_view>

// Passes output to a text, for a few milliseconds in each iteration of the event loop, so that a
// flood of output does not freeze the windows. Of a flood, what the text would soon remove is never
// passed. [ui]
class OutputFeed {
  public:
    // What the feed does to the text.
    struct Text {
        // Returns the length of the last line in UTF-16 units.
        std::function<qsizetype()> lastColumn;
        std::function<void(const OutputChange& change)> apply;
        // Removes everything: the output that follows fills the whole text.
        std::function<void()> removeAll;
    };

    // `capacity` is what the text keeps of a long output.
    OutputFeed(Text text, OutputBacklog::Size capacity);

    void Append(std::string_view utf8);
    // Appends lines, beginning with a new one.
    void AppendLines(std::string_view utf8);
    // Performs an action when all earlier output has been passed, at once if it has been. The
    // action must not append output, except by StartLine.
    void Then(std::function<void()> action);
    // Starts a new line in the text, unless its last one is empty.
    void StartLine();
    // A program has ended: its colours, or its unfinished control sequence, end as well.
    void EndOutput() { Append("\x1b[m"); }
    // Passes everything that is pending at once, which can take long.
    void Flush();
    // Forgets it instead, but performs the actions.
    void Clear();

  private:
    void PassForAWhile();
    void PassBlock();
    void Pass(std::string_view bytes) { text_.apply(parser_.Feed(bytes, text_.lastColumn())); }
    void SkipSuperfluous();

    Text text_;
    OutputText parser_;
    OutputBacklog pending_;
    QTimer timer_;
};

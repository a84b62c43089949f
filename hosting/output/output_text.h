#pragma once

#include "text_style.h"

#include <QString>

#include <string>
#include <string_view>
#include <vector>

// The effect of a chunk of output on the end of a text.
struct OutputChange {
    // The text from `start`, in UTF-16 units, to the next part has this style.
    struct Part {
        qsizetype start;
        TextStyle style;
    };

    bool erasesLastLine = false;  // Applied before `text` is appended.
    QString text;
    std::vector<Part> parts;  // The text before the first part has no style.
};

// Converts the output of programs to text with styles. Chunks may split UTF-8 characters and
// control sequences anywhere. Invalid bytes become U+FFFD, "\r\n" becomes "\n", control sequences
// are removed, and after a single "\r" the text replaces the last line. Not thread-safe.
class OutputText {
  public:
    // Longer lines are split: a line is laid out as a whole, and one of a megabyte would block the
    // window for seconds.
    static constexpr qsizetype kMaxLineLength = 4096;  // UTF-16 units

    // `column` is the length of the text's last line in UTF-16 units.
    OutputChange Feed(std::string_view bytes, qsizetype column);

    // Passes over output that is not shown. Only its control sequences count for what follows.
    void Skip(std::string_view bytes);

  private:
    // A string is the text of a sequence such as a window's title.
    enum class State { Text, Escape, Designation, ControlSequence, String, StringEscape };

    qsizetype AppendRun(QStringView text, qsizetype at);
    void Process(QChar c);
    void ProcessEscape(QChar c);
    void ProcessControlSequence(QChar c);
    void ProcessString(QChar c);
    void AppendCharacter(QChar c);
    void AppendStyled(QChar c);
    void BeginStyle();
    void RestartLine();

    std::string incomplete_;  // The first bytes of a character.
    State state_ = State::Text;
    std::string parameters_;    // Of the control sequence.
    bool hasReturned_ = false;  // After "\r".
    TextStyle style_;
    OutputChange change_;
    qsizetype column_ = 0;
};

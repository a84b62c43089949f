#pragma once

#include <QString>

#include <string>
#include <string_view>

// The effect of a chunk of output on the end of a text.
struct OutputChange {
    bool erasesLastLine = false;  // Applied before `text` is appended.
    QString text;
};

// Converts the output of programs to plain text. Chunks may split UTF-8 characters and control
// sequences anywhere. Invalid bytes become U+FFFD, "\r\n" becomes "\n", control sequences are
// removed, and after a single "\r" the text replaces the last line. Not thread-safe.
class OutputText {
  public:
    // Longer lines are split: a line is laid out as a whole, and one of a megabyte would block the
    // window for seconds.
    static constexpr qsizetype kMaxLineLength = 4096;  // UTF-16 units

    // `column` is the length of the text's last line in UTF-16 units.
    OutputChange Feed(std::string_view bytes, qsizetype column);

  private:
    enum class State { Text, CarriageReturn, Escape, ControlSequence };

    void Process(QChar c);
    void AppendCharacter(QChar c);
    void RestartLine();

    std::string incomplete_;  // The first bytes of a character.
    State state_ = State::Text;
    OutputChange change_;
    qsizetype column_ = 0;
};

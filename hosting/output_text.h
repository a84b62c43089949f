#pragma once

#include <QString>

#include <string>
#include <string_view>

// What a piece of output does to the end of a text.
struct OutputChange {
    bool erasesLastLine = false;  // First.
    QString text;                 // Then this is added.
};

// Output of programs as plain text: UTF-8 and control sequences, which pieces may cut anywhere.
// Invalid bytes become U+FFFD, "\r\n" becomes "\n", sequences for colours and the like are left
// out, and a lone "\r" has what follows take the last line's place. Used on one thread.
class OutputText {
  public:
    // Longer lines are broken: a line is laid out as a whole, and one of a megabyte would hold the
    // window up for seconds.
    static constexpr qsizetype kMaxLineLength = 4096;  // UTF-16 units

    // `column` is how many units the text's last line has.
    OutputChange Feed(std::string_view bytes, qsizetype column);

  private:
    enum class State { Text, CarriageReturn, Escape, Sequence };

    void Take(QChar c);
    void TakeText(QChar c);
    void StartLineAnew();

    std::string begun_;  // The beginning of a character.
    State state_ = State::Text;
    OutputChange change_;
    qsizetype column_ = 0;
};

#pragma once

#include <string>
#include <string_view>

// Standard output, which may stall for as long as its reader likes. Used on one thread.
class StandardOutput {
  public:
    // When `interruptFd` is readable, text that the reader does not take at once is given up.
    explicit StandardOutput(int interruptFd) : interruptFd_(interruptFd) {}

    // Writes all of the text, unless it is given up. False when writing fails.
    bool Write(std::string_view text);
    // Why; a sentence. Empty when the reader has simply left.
    const std::string& error() const { return error_; }

  private:
    bool IsReady() const;

    int interruptFd_;
    std::string error_;
};

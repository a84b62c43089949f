#pragma once

#include <string>
#include <string_view>

// Writes to standard output, whose reader may stall. Not thread-safe.
class StandardOutput {
  public:
    // While `interruptFd` is readable, text that cannot be written at once is discarded.
    explicit StandardOutput(int interruptFd) : interruptFd_(interruptFd) {}

    // Writes the text, except for what is discarded. Returns false if writing fails.
    bool Write(std::string_view text);
    // The reason as a message for the user; empty if the reader has closed the pipe.
    const std::string& error() const { return error_; }

  private:
    bool IsReady() const;

    int interruptFd_;
    std::string error_;
};

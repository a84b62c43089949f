#pragma once

#include <string>
#include <string_view>

// Standard output, which may stall for as long as its reader likes. Used on one thread.
class StandardOutput {
  public:
    // While it waits for the reader it looks at `interruptFd`: when that is readable, the text is
    // given up, so that somebody gets to read it.
    explicit StandardOutput(int interruptFd) : interruptFd_(interruptFd) {}

    // Writes all of the text, unless it is given up. False when writing fails.
    bool Write(std::string_view text);
    // Why; a sentence. Empty when the reader has simply left.
    const std::string& error() const { return error_; }

    // From here on text that the reader does not take at once is given up.
    void StopWaiting() { waits_ = false; }

  private:
    bool IsReady() const;

    int interruptFd_;
    bool waits_ = true;
    std::string error_;
};

#pragma once

#include <string>
#include <string_view>
#include <vector>

// Splits a stream of bytes into pieces of one line each, including line endings, as it arrives.
class LineSplitter {
  public:
    static constexpr std::size_t kMaxPiece = 65536;  // bytes

    // Returns the lines that these bytes complete. A line longer than kMaxPiece is split between
    // two UTF-8 characters.
    std::vector<std::string> Feed(std::string_view bytes);

    // Returns the unfinished line, except for an incomplete UTF-8 character at its end, which is
    // kept.
    std::string TakeUnfinished();

    // Returns all remaining bytes, at the end of the stream.
    std::string TakeRest();

    bool hasUnfinished() const { return !line_.empty(); }

  private:
    std::string line_;
};

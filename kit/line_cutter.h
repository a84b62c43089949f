#pragma once

#include <string>
#include <string_view>
#include <vector>

// Cuts a stream of bytes, as it arrives, into pieces of one line each, endings included.
class LineCutter {
  public:
    static constexpr std::size_t kLongestPiece = 65536;

    // The lines that these bytes complete. What is longer than a piece may be is cut, between two
    // characters.
    std::vector<std::string> Feed(std::string_view bytes);

    // The line under way; a UTF-8 character whose rest has yet to arrive stays behind.
    std::string TakeUnfinished();

    // All that is left, at the end of the stream.
    std::string TakeRest();

    bool hasUnfinished() const { return !line_.empty(); }

  private:
    std::string line_;
};

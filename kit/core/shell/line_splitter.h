#pragma once

#include <string>
#include <string_view>
#include <vector>

// Splits a stream of bytes, as it arrives, into pieces of one line each, endings included.
class LineSplitter {
  public:
    static constexpr std::size_t kMaxPiece = 65536;  // bytes

    // The lines that these bytes complete. A line longer than kMaxPiece is split between two
    // characters.
    std::vector<std::string> Feed(std::string_view bytes);

    // The unfinished line, without a UTF-8 character whose remaining bytes have yet to arrive.
    std::string TakeUnfinished();

    // All that is left, at the end of the stream.
    std::string TakeRest();

    bool hasUnfinished() const { return !line_.empty(); }

  private:
    std::string line_;
};

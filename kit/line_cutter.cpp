#include "line_cutter.h"

#include "whole_characters.h"

#include <algorithm>
#include <utility>

std::vector<std::string> LineCutter::Feed(std::string_view bytes)
{
    std::vector<std::string> pieces;
    while (!bytes.empty()) {
        const auto feed = bytes.find('\n');
        const auto end = feed == std::string_view::npos ? bytes.size() : feed + 1;
        const auto taken = std::min(end, kLongestPiece - line_.size());
        line_ += bytes.substr(0, taken);
        bytes.remove_prefix(taken);
        if (line_.back() == '\n') {
            pieces.push_back(std::exchange(line_, {}));
        } else if (line_.size() == kLongestPiece) {
            pieces.push_back(TakeUnfinished());
        }
    }
    return pieces;
}

std::string LineCutter::TakeUnfinished()
{
    std::string piece = line_.substr(0, WholeCharacters(line_));
    line_.erase(0, piece.size());
    return piece;
}

std::string LineCutter::TakeRest()
{
    return std::exchange(line_, {});
}

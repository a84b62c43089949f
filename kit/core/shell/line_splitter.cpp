#include "line_splitter.h"

#include "whole_characters.h"

#include <algorithm>
#include <utility>

std::vector<std::string> LineSplitter::Feed(std::string_view bytes)
{
    std::vector<std::string> pieces;
    while (!bytes.empty()) {
        const auto feed = bytes.find('\n');
        const auto end = feed == std::string_view::npos ? bytes.size() : feed + 1;
        const auto taken = std::min(end, kMaxPiece - line_.size());
        line_ += bytes.substr(0, taken);
        bytes.remove_prefix(taken);
        if (line_.back() == '\n') {
            pieces.push_back(std::exchange(line_, {}));
        } else if (line_.size() == kMaxPiece) {
            pieces.push_back(TakeUnfinished());
        }
    }
    return pieces;
}

std::string LineSplitter::TakeUnfinished()
{
    std::string piece = line_.substr(0, WholeCharacters(line_));
    line_.erase(0, piece.size());
    return piece;
}

std::string LineSplitter::TakeRest()
{
    return std::exchange(line_, {});
}

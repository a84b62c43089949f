#include "line_cutter.h"

#include <algorithm>
#include <utility>

namespace {

bool IsContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::size_t SequenceLength(char lead)
{
    const auto byte = static_cast<unsigned char>(lead);
    if (byte >= 0xF0 && byte < 0xF8) {
        return 4;
    }
    if (byte >= 0xE0) {
        return byte < 0xF0 ? 3 : 1;
    }
    return byte >= 0xC0 ? 2 : 1;
}

// The length of `text` without the beginning of a character at its end.
std::size_t WholeCharacters(std::string_view text)
{
    std::size_t lead = text.size();
    for (std::size_t back = 1; back <= 4 && back <= text.size(); ++back) {
        if (!IsContinuation(text[text.size() - back])) {
            lead = text.size() - back;
            break;
        }
    }
    const bool unfinished = lead < text.size() && SequenceLength(text[lead]) > text.size() - lead;
    return unfinished ? lead : text.size();
}

}  // namespace

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

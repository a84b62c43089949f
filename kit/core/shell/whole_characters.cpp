#include "whole_characters.h"

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

}  // namespace

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

#include "Text.h"

#include <algorithm>

std::string ReplaceFirst(const std::string& text, std::string_view what, std::string_view with)
{
    std::string result = text;
    if (const auto at = text.find(what); at != std::string::npos) {
        result.replace(at, what.size(), with);
    }
    return result;
}

std::vector<std::string_view> SplitLines(const std::string_view& text)
{
    std::vector<std::string_view> lines;
    for (std::string_view rest = text; !rest.empty();) {
        const auto feed = rest.find('\n');
        std::string_view line = rest.substr(0, feed);
        if (feed == std::string_view::npos) {
            rest = {};
        } else {
            rest.remove_prefix(feed + 1);
            if (line.ends_with('\r')) {
                line.remove_suffix(1);
            }
        }
        lines.push_back(line);
    }
    return lines;
}

std::size_t BackUpToPreviousGlyphStartIfNeeded(const std::string& text, std::size_t index)
{
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const std::size_t first = index - std::min<std::size_t>(index, 3);
    for (std::size_t start = std::min(index, text.size()); start-- > first;) {
        if (const auto byte = byteAt(start); byte < 0x80 || byte >= 0xC0) {
            const std::size_t length = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
            const bool reaches =
                start + length > index && index < text.size() && (byteAt(index) & 0xC0U) == 0x80U;
            return reaches ? start : index;
        }
    }
    return index;
}

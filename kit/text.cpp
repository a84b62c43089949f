#include "Text.h"

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

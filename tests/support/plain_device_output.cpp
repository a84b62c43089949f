#include "plain_device_output.h"

#include <cstddef>
#include <limits>

namespace {

constexpr std::size_t kMany = std::numeric_limits<std::size_t>::max();

// So many characters of a kind, as many as possible.
struct Run {
    bool (*isOfKind)(char);
    std::size_t least;
    std::size_t most;
};

bool IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsHex(char c)
{
    return IsDigit(c) || (c >= 'a' && c <= 'f');
}

bool IsInLine(char c)
{
    return c != '\r' && c != '\n';
}

bool IsInNode(char c)
{
    return IsInLine(c) && c != ' ' && c != '\t';
}

template <char wanted>
bool Is(char c)
{
    return c == wanted;
}

// Whether the runs, one after another, cover the whole text; tries the longest first. `parts` then
// holds what each of them covers.
bool Cover(std::string_view text, const std::vector<Run>& runs, std::vector<std::string>& parts)
{
    if (parts.size() == runs.size()) {
        return text.empty();
    }
    const Run& run = runs[parts.size()];
    std::size_t longest = 0;
    while (longest < text.size() && longest < run.most && run.isOfKind(text[longest])) {
        ++longest;
    }
    for (std::size_t size = longest + 1; size-- > run.least;) {
        parts.emplace_back(text.substr(0, size));
        if (Cover(text.substr(size), runs, parts)) {
            return true;
        }
        parts.pop_back();
    }
    return false;
}

// A long line with such a byte inside is passed over.
bool IsPassedOver(const std::string& line)
{
    const auto at = line.find_first_of("\r\n\v\f");
    const bool inside = at != std::string::npos && line.substr(at) != "\r" &&
                        line.substr(at) != "\n" && line.substr(at) != "\r\n";
    return line.size() > 1000 && inside;
}

const Run kCarriageReturn{Is<'\r'>, 0, 1};
const Run kLineFeed{Is<'\n'>, 0, 1};

}  // namespace

decltype(ParseDirLine("")) PlainParseDirLine(const std::string& line)
{
    static const std::vector<Run> runs{{IsBlank, 0, kMany}, {IsDigit, 1, kMany},
                                       {IsBlank, 1, kMany}, {IsInLine, 1, kMany},
                                       kCarriageReturn,     kLineFeed};
    std::vector<std::string> parts;
    if (IsPassedOver(line) || !Cover(line, runs, parts)) {
        return std::nullopt;
    }
    return std::pair(parts[1], parts[3]);
}

decltype(ParseDeviceLine("")) PlainParseDeviceLine(const std::string& line)
{
    static const std::vector<Run> runs{
        {IsInNode, 1, kMany}, {IsBlank, 1, kMany}, {IsHex, 1, kMany}, {IsBlank, 1, kMany},
        {IsHex, 1, kMany},    {Is<':'>, 1, 1},     {IsHex, 1, kMany}, {IsBlank, 1, kMany},
        {IsInLine, 1, kMany}, kCarriageReturn,     kLineFeed};
    std::vector<std::string> parts;
    if (IsPassedOver(line) || !line.starts_with("/dev/") ||
        !Cover(std::string_view(line).substr(5), runs, parts)) {
        return std::nullopt;
    }
    return std::tuple(parts[8], "/dev/" + parts[0], parts[2], parts[4] + ":" + parts[6]);
}

std::vector<std::string> PlainComponents(const std::string& path)
{
    std::vector<std::string> components;
    if (!path.empty()) {
        components.emplace_back(path[0] == '/' ? "/" : "");
    }
    std::string component;
    for (const char c : path + "/") {
        if (c != '/') {
            component += c;
        } else if (!component.empty()) {
            components.push_back(component);
            component.clear();
        }
    }
    return components;
}

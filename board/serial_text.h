#pragma once

#include <string>
#include <string_view>

// A board's serial line ends lines with CR LF: a line feed becomes both.
inline std::string WithSerialLineEnds(std::string_view text)
{
    std::string result;
    result.reserve(text.size() + 16);
    for (const char c : text) {
        if (c == '\n') {
            result += '\r';
        }
        result += c;
    }
    return result;
}

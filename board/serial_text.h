#pragma once

#include <string>
#include <string_view>

// Replaces each LF with CR LF, the line ending on a board's serial line.
inline std::string WithSerialLineEndings(std::string_view text)
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

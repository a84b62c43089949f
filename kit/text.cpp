#include "Text.h"

std::string ReplaceFirst(const std::string& text, std::string_view what, std::string_view with)
{
    std::string result = text;
    if (const auto at = text.find(what); at != std::string::npos) {
        result.replace(at, what.size(), with);
    }
    return result;
}

#include "line_match.h"

#include <stdexcept>
#include <string_view>

namespace {

// Longer than any line of a listing: names have at most 255 bytes.
constexpr std::size_t kLongLine = 1000;

// Where white space can belong to either of two groups, the engine tries every way to divide it, in
// quadratic time: before a line break inside the line, and at vertical tabs and form feeds.
bool WouldTakeTooLong(std::string_view line)
{
    if (line.size() <= kLongLine) {
        return false;
    }
    line.remove_suffix(line.ends_with('\n') ? 1 : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line.find_first_of("\r\n\v\f") != std::string_view::npos;
}

}  // namespace

bool MatchesWholeLine(const std::string& line, boost::smatch& groups, const boost::regex& pattern)
{
    try {
        return !WouldTakeTooLong(line) && boost::regex_match(line, groups, pattern);
    } catch (const std::runtime_error&) {
        return false;
    }
}

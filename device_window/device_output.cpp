#include "device_output.h"

// How many steps the expression engine may take for one line before it gives up: a few
// milliseconds' worth. Its own limit lets one hostile line hold the window up for seconds.
#define BOOST_REGEX_MAX_STATE_COUNT 1000000
#include <boost/regex.hpp>

#include <stdexcept>
#include <string_view>

namespace {

constexpr std::size_t kLongLine = 4096;

// Before a line break inside of a long line the engine tries every way to part the blanks from the
// name, in quadratic time. No board's file and no port has such a line.
bool WouldTakeTooLong(std::string_view line)
{
    if (line.size() <= kLongLine) {
        return false;
    }
    line.remove_suffix(line.ends_with('\n') ? 1 : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line.find_first_of("\r\n") != std::string_view::npos;
}

// A line for which the engine gives up counts as one that does not match.
bool Matches(const std::string& line, boost::smatch& groups, const boost::regex& pattern)
{
    try {
        return !WouldTakeTooLong(line) && boost::regex_match(line, groups, pattern);
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace

std::optional<std::pair<std::string, std::string>> ParseDirLine(const std::string& line)
{
    // In the brackets stand the control bytes themselves.
    static const boost::regex filePattern("\\s*(?<size>\\d+)\\s+(?<name>[^\r\n]+)\\r?\\n?");
    boost::smatch groups;
    if (!Matches(line, groups, filePattern)) {
        return std::nullopt;
    }
    return std::pair(groups["size"].str(), groups["name"].str());
}

std::optional<std::tuple<std::string, std::string, std::string, std::string>> ParseDeviceLine(
    const std::string& line)
{
    static const boost::regex deviceName(
        "(?<dev>/dev/[^\r\n \t]+)\\s+(?<uid>[0-9a-f]+)\\s+(?<port>[0-9a-f]+[:][0-9a-f]+)\\s+"
        "(?<name>[^\r\n]+)\\r?\\n?");
    boost::smatch groups;
    if (!Matches(line, groups, deviceName)) {
        return std::nullopt;
    }
    return std::tuple(groups["name"].str(), groups["dev"].str(), groups["uid"].str(),
                      groups["port"].str());
}

#include "device_output.h"

#include "line_match.h"

std::optional<std::pair<std::string, std::string>> ParseDirLine(const std::string& line)
{
    // The character classes contain the control characters themselves.
    static const boost::regex filePattern("\\s*(?<size>\\d+)\\s+(?<name>[^\r\n]+)\\r?\\n?");
    boost::smatch groups;
    if (!MatchesWholeLine(line, groups, filePattern)) {
        return std::nullopt;
    }
    return std::pair(groups["size"].str(), groups["name"].str());
}

bool IsPort(std::string_view line)
{
    return line.starts_with("/dev/");
}

bool IsBoard(std::string_view line)
{
    // A port of this name counts as a board, whatever the tool reports about it.
    return IsPort(line) && (line.find("MicroPython") != std::string_view::npos ||
                            line.find("usbmodem1101") != std::string_view::npos);
}

std::optional<std::tuple<std::string, std::string, std::string, std::string>> ParseDeviceLine(
    const std::string& line)
{
    static const boost::regex deviceName(
        "(?<dev>/dev/[^\r\n \t]+)\\s+(?<uid>[0-9a-f]+)\\s+(?<port>[0-9a-f]+[:][0-9a-f]+)\\s+"
        "(?<name>[^\r\n]+)\\r?\\n?");
    boost::smatch groups;
    if (!MatchesWholeLine(line, groups, deviceName)) {
        return std::nullopt;
    }
    return std::tuple(groups["name"].str(), groups["dev"].str(), groups["uid"].str(),
                      groups["port"].str());
}

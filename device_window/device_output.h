#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

// Parsing of the lines that mpremote prints, with or without their endings. Any other line, such as
// a header or an empty line, yields an empty result. [any]

// A line of `ls`: (size, name). The size is kept as the printed digits; the name of a directory
// ends in "/". Spaces before the name are lost, because the tool uses them as padding.
std::optional<std::pair<std::string, std::string>> ParseDirLine(const std::string& line);

// Whether the line names a port, as a line of `devs` does.
bool IsPort(std::string_view line);

// Whether the line names a port with a board.
bool IsBoard(std::string_view line);

// A line of `devs`: (name, dev, uid, port) — a descriptive name, the device node, the serial number
// and the vendor and product numbers. A line without a lower-case hexadecimal serial number does
// not match.
std::optional<std::tuple<std::string, std::string, std::string, std::string>> ParseDeviceLine(
    const std::string& line);

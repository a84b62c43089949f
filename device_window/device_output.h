#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

// What the lines mean that mpremote prints. Lines may come with or without their ending. Whatever
// is no such line, headers and empty lines included, gives nothing. Usable on any thread.

// A line of `ls`: (size, name). The size is the digits as printed; the name of a directory ends in
// "/". Blanks before the name are lost, since the tool pads with them.
std::optional<std::pair<std::string, std::string>> ParseDirLine(const std::string& line);

// Whether the line names a port, as a line of `devs` does.
bool IsPort(std::string_view line);

// Whether the line names a port with a board.
bool IsBoard(std::string_view line);

// A line of `devs`: (name, dev, uid, port) — a descriptive name, the device node, the serial number
// and the vendor and product numbers. A port without a lower-case hexadecimal serial number is
// none.
std::optional<std::tuple<std::string, std::string, std::string, std::string>> ParseDeviceLine(
    const std::string& line);

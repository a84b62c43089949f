#pragma once

#include "device_output.h"
#include "device_path.h"

#include <string>
#include <string_view>
#include <vector>

// Second implementations of what device_output.h and device_path.h do: slow, plain, and sharing no
// line with the first, to be compared with them.

decltype(ParseDirLine("")) PlainParseDirLine(const std::string& line);
decltype(ParseDeviceLine("")) PlainParseDeviceLine(const std::string& line);

// The components that a PathIter walks over.
std::vector<std::string> PlainComponents(const std::string& path);

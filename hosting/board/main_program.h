#pragma once

#include <string>
#include <string_view>
#include <vector>

// The words after the tool's path that restart the board and run its main.py, until it ends or is
// stopped. [any]
std::vector<std::string> RunMainCommand();

// The line that this command prints if there is no such file.
inline constexpr std::string_view kNoMainProgram = "The board has no main.py.";

#pragma once

#include <string>
#include <vector>

// The words after the tool's path that run the text with the board's state kept: the value of a
// single line is printed, several lines run as they are. Empty if there is nothing to run. [any]
std::vector<std::string> PromptCommand(const std::string& text);

#pragma once

#include <string>
#include <vector>

// The environment of the board's tool, as words of the form "NAME=value": this process's own, and
// what makes Python programs such as mpremote print without buffering and in UTF-8. [any]
std::vector<std::string> ToolEnvironment();

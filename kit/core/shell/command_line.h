#pragma once

#include <expected>
#include <string>
#include <vector>

// Splits a command line into words by a shell's rules for spaces, single and double quotes and
// backslashes; a word that begins with "#" begins a comment. No other character of a shell is
// special: ; | & $ and * are ordinary characters. There is at least one word. The error is a
// sentence without a full stop.
std::expected<std::vector<std::string>, std::string> SplitCommandLine(const std::string& line);

#pragma once

#include <expected>
#include <string>
#include <vector>

// Cuts a command line into words by a shell's rules for blanks, single and double quotes and
// backslashes; a word that begins with "#" begins a comment. Nothing else of a shell happens: ; | &
// $ and * stay letters. There is at least one word. The error is a sentence without a full stop.
std::expected<std::vector<std::string>, std::string> CutCommandLine(const std::string& line);

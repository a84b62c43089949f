#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

// Splits a command line into words by a shell's rules for spaces, single and double quotes and
// backslashes; a word that begins with "#" starts a comment. Other characters that are special in a
// shell, such as ; | & $ and *, are ordinary characters. The result has at least one word. The
// error is a sentence without a full stop. [any]
std::expected<std::vector<std::string>, std::string> SplitCommandLine(const std::string& line);

// The text in the form that SplitCommandLine reads as this one word, or as a part of a word: a
// backslash precedes spaces, quotes, backslashes and a "#" that would start a comment. Text without
// these is unchanged. [any]
std::string EscapeWord(std::string_view text);

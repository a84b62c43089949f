#pragma once

#include <string>
#include <string_view>
#include <vector>

// A copy of `text` in which the first occurrence of `what` is replaced by `with`; unchanged when
// there is none. `what` must not be empty.
std::string ReplaceFirst(const std::string& text, std::string_view what, std::string_view with);

// The lines of `text`, as views into it: cut at line feeds, without them and without a carriage
// return before one. A last line without an ending counts; an empty text has no line.
std::vector<std::string_view> SplitLines(const std::string_view& text);

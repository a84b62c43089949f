#pragma once

#include <string>
#include <string_view>

// A copy of `text` in which the first occurrence of `what` is replaced by `with`; unchanged when
// there is none. `what` must not be empty.
std::string ReplaceFirst(const std::string& text, std::string_view what, std::string_view with);

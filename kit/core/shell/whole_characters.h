#pragma once

#include <cstddef>
#include <string_view>

// The length of a UTF-8 text without an incomplete character at its end. [any]
std::size_t WholeCharacters(std::string_view text);

#pragma once

#include <cstddef>
#include <string_view>

// The length of UTF-8 `text` without the beginning of a character at its end. Used on any thread.
std::size_t WholeCharacters(std::string_view text);

#pragma once

#include "Geometry.h"

#include <optional>
#include <string>
#include <string_view>

// The text form of a rectangle for settings: "left,top,right,bottom", each number in the shortest
// decimal form that reads back as the same.
std::string RectValueForSettings(BRect rect);

// Reads the option `key`: the word "-KEY" and, in the word after it, a rectangle in its text form
// that can be a window's frame: not empty, and no edge farther than 1,000,000 points from the
// origin. `argv` points to the word to read, in a list that a null pointer ends, and then behind
// what was read. Anything else gives nothing and leaves `argv` where it stands.
std::optional<BRect> ParseAsRectFromArgv(const char* const*& argv, std::string_view key);

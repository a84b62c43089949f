#pragma once

#include "Geometry.h"

#include <optional>
#include <string>
#include <string_view>

// Formats a rectangle for the settings: "left,top,right,bottom", each number in the shortest
// decimal form that reads back as the same value. [any]
std::string RectValueForSettings(BRect rect);

// Parses the option `key`: the word "-KEY", followed by a word that holds a rectangle in text form.
// The rectangle must be usable as a window's frame: not empty, and no edge farther than 1,000,000
// points from the origin. `argv` points into a list of words terminated by a null pointer; it is
// advanced past the words that were parsed. On failure the result is empty and `argv` is unchanged.
// [any]
std::optional<BRect> ParseAsRectFromArgv(const char* const*& argv, std::string_view key);

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// A copy of `text` in which the first occurrence of `what` is replaced by `with`; unchanged when
// there is none. `what` must not be empty.
std::string ReplaceFirst(const std::string& text, std::string_view what, std::string_view with);

// The lines of `text`, as views into it: cut at line feeds, without them and without a carriage
// return before one. A last line without an ending counts; an empty text has no line.
std::vector<std::string_view> SplitLines(const std::string_view& text);

// The index, moved back where needed to the first byte of the UTF-8 character that it falls in.
std::size_t BackUpToPreviousGlyphStartIfNeeded(const std::string& text, std::size_t index);

// A number of bytes in the widest of its forms that fits into `available`, by what `measure` gives
// for each: "1,234,567 bytes", "1.2 MB", "1.2M"; the narrowest when none fits. A text that is not a
// number of bytes stays as it is. `choice` and `width` keep the form that was found and the width
// it was found for, for the next call with the same text; a negative `choice` means that there is
// none yet.
std::string SizeStringForBounds(const std::string& bytes, int& choice, float& width,
                                float available,
                                const std::function<float(const std::string_view&)>& measure);

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Text functions. [any]

// A copy of `text` in which the first occurrence of `what`, if any, is replaced by `with`. `what`
// must not be empty.
std::string ReplaceFirst(const std::string& text, std::string_view what, std::string_view with);

// The lines of `text`, as views into it, without their line endings (LF or CR LF). The last line
// need not be terminated; an empty text has no lines.
std::vector<std::string_view> SplitLines(const std::string_view& text);

// The index or, if it points into the middle of a UTF-8 character, the index of the first byte of
// that character.
std::size_t BackUpToPreviousGlyphStartIfNeeded(const std::string& text, std::size_t index);

// Formats a number of bytes in the widest form that fits into the width `available`, as measured by
// `measure`: "1,234,567 bytes", "1.2 MB" or "1.2M"; the narrowest form if none fits. A text that is
// not a number of bytes is returned unchanged. `choice` and `width` cache the chosen form and the
// width it was chosen for, for the next call with the same text; a negative `choice` means that
// nothing is cached yet.
std::string SizeStringForBounds(const std::string& bytes, int& choice, float& width,
                                float available,
                                const std::function<float(const std::string_view&)>& measure);

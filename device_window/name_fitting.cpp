#include "name_fitting.h"

#include "Text.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

// The length in bytes that each step of shortening keeps: at least one character.
std::vector<std::size_t> ShortenedLengths(const std::string& name)
{
    std::vector<std::size_t> lengths;
    std::size_t end = name.size();
    while (end > 0 && (end = BackUpToPreviousGlyphStartIfNeeded(name, end - 1)) > 0) {
        lengths.push_back(end);
    }
    return lengths;
}

}  // namespace

std::string FitName(const std::string& name, double available, const MeasureFunction& measure)
{
    const auto fits = [&](const std::string& text) {
        return available >= static_cast<double>(measure(text));
    };
    const auto shortened = [&](std::size_t length) { return name.substr(0, length) + "…"; };
    const auto lengths = ShortenedLengths(name);
    if (lengths.empty() || fits(name)) {
        return name;
    }
    // The steps that do not fit come first, so a binary search measures only a few.
    const auto found = std::ranges::partition_point(
        lengths, [&](std::size_t length) { return !fits(shortened(length)); });
    return shortened(found == lengths.end() ? lengths.back() : *found);
}

#include "Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

namespace {

constexpr std::size_t kMaxDigits = 18;  // Always fits into 64 bits.

std::optional<std::uint64_t> ParseSize(const std::string& text)
{
    const bool isNumber = !text.empty() && text.size() <= kMaxDigits &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::optional(std::stoull(text)) : std::nullopt;
}

std::string WithSeparators(std::uint64_t size)
{
    std::string text = std::to_string(size);
    for (auto at = static_cast<std::ptrdiff_t>(text.size()) - 3; at > 0; at -= 3) {
        text.insert(static_cast<std::size_t>(at), 1, ',');
    }
    return text;
}

// The forms, from the widest to the narrowest. The units are decimal, as in desktop programs.
std::vector<std::string> Forms(std::uint64_t size)
{
    static constexpr std::array kUnits{"", "k", "M", "G", "T", "P"};
    const std::string whole = WithSeparators(size) + (size == 1 ? " byte" : " bytes");
    if (size < 1000) {
        return {whole, std::to_string(size) + " B", std::to_string(size)};
    }
    auto scaled = static_cast<double>(size);
    std::size_t unit = 0;
    while (scaled >= 999.95 && unit + 1 < kUnits.size()) {  // It would be rounded to 1000.0.
        scaled /= 1000;
        ++unit;
    }
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "%.1f", scaled);
    const std::string shortForm = number.data();
    return {whole, shortForm + " " + kUnits[unit] + "B", shortForm + kUnits[unit]};
}

}  // namespace

std::string SizeStringForBounds(const std::string& bytes, int& choice, float& width,
                                float available,
                                const std::function<float(const std::string_view&)>& measure)
{
    const auto size = ParseSize(bytes);
    if (!size) {
        return bytes;
    }
    const auto forms = Forms(*size);
    const auto last = static_cast<int>(forms.size()) - 1;
    // An exact comparison is intended: `width` is a copy of an earlier `available`.
    if (choice < 0 || choice > last || width < available || width > available) {
        const auto fits = std::ranges::find_if(
            forms, [&](const std::string& form) { return measure(form) <= available; });
        choice = std::min(static_cast<int>(fits - forms.begin()), last);
        width = available;
    }
    return forms[static_cast<std::size_t>(choice)];
}

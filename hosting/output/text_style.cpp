#include "text_style.h"

#include <charconv>
#include <optional>
#include <vector>

namespace {

constexpr int kForeground = 38;
constexpr int kBackground = 48;
constexpr int kByIndex = 5;
constexpr int kByComponents = 2;

// An empty parameter is 0. Empty if there is anything else than numbers and semicolons.
std::vector<int> Numbers(std::string_view parameters)
{
    std::vector<int> numbers;
    const char* at = parameters.data();
    const char* const end = at + parameters.size();
    while (true) {
        int number = 0;
        const auto [next, error] = std::from_chars(at, end, number);
        const bool isNumber = error != std::errc::result_out_of_range && number >= 0;
        if (!isNumber || (next != end && *next != ';')) {
            return {};
        }
        numbers.push_back(number);
        if (next == end) {
            return numbers;
        }
        at = next + 1;
    }
}

std::optional<int> ColorOf(int number)
{
    if (number >= 30 && number < 38) {
        return number - 30;
    }
    if (number >= 90 && number < 98) {
        return number - 90 + 8;
    }
    return number == 39 ? std::optional(-1) : std::nullopt;
}

}  // namespace

TextStyle ApplyParameters(TextStyle style, std::string_view parameters)
{
    const auto numbers = Numbers(parameters);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const int number = numbers[i];
        if (number == 0) {
            style = {};
        } else if (number == 1 || number == 22) {
            style.isBold = number == 1;
        } else if (const auto color = ColorOf(number)) {
            style.color = *color;
        } else if (number == kForeground || number == kBackground) {
            const int kind = i + 1 < numbers.size() ? numbers[i + 1] : 0;
            if (kind == kByIndex && number == kForeground && i + 2 < numbers.size()) {
                style.color = numbers[i + 2] < TextStyle::kColors ? numbers[i + 2] : -1;
            }
            i += kind == kByIndex ? 2 : kind == kByComponents ? 4 : 0;
        }
    }
    return style;
}

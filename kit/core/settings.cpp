#include "Settings.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

std::string ShortestForm(double value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

std::optional<BRect> ParseRect(std::string_view text)
{
    std::array<double, 4> edges{};
    const char* position = text.data();
    const char* const end = text.data() + text.size();
    for (double& edge : edges) {
        const bool isFirst = &edge == edges.data();
        if (!isFirst) {
            if (position == end || *position != ',') {
                return std::nullopt;
            }
            ++position;
        }
        const auto [stop, error] = std::from_chars(position, end, edge);
        if (error != std::errc() || !std::isfinite(edge)) {
            return std::nullopt;
        }
        position = stop;
    }
    if (position != end) {
        return std::nullopt;
    }
    return BRect{edges[0], edges[1], edges[2], edges[3]};
}

// A frame that no window can have had comes from a corrupted settings file.
bool IsUsable(BRect frame)
{
    constexpr double kMaxCoordinate = 1e6;
    const bool isInRange = frame.left >= -kMaxCoordinate && frame.top >= -kMaxCoordinate &&
                           frame.right <= kMaxCoordinate && frame.bottom <= kMaxCoordinate;
    return isInRange && frame.Width() > 0 && frame.Height() > 0;
}

}  // namespace

std::string RectValueForSettings(BRect rect)
{
    return ShortestForm(rect.left) + ',' + ShortestForm(rect.top) + ',' + ShortestForm(rect.right) +
           ',' + ShortestForm(rect.bottom);
}

std::optional<BRect> ParseAsRectFromArgv(const char* const*& argv, std::string_view key)
{
    if (argv[0] == nullptr || argv[1] == nullptr || argv[0] != "-" + std::string(key)) {
        return std::nullopt;
    }
    const auto rect = ParseRect(argv[1]);
    if (!rect || !IsUsable(*rect)) {
        return std::nullopt;
    }
    argv += 2;
    return rect;
}

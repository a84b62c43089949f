#include "frame_fitting.h"
#include "name_fitting.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// "W" has a width of 2, every other character of 1.
float Width(std::string_view text)
{
    const auto isStart = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    return static_cast<float>(std::ranges::count_if(text, isStart) + std::ranges::count(text, 'W'));
}

}  // namespace

TEST(FitName, LosesWholeCharactersUntilItFits)
{
    const std::tuple<const char*, double, const char*> rows[] = {
        {"boot.py", 7, "boot.py"},
        {"boot.py", 6.9, "boot.…"},
        {"boot.py", 2, "b…"},
        {"boot.py", 0, "b…"},
        {"b", 0, "b"},
        {"é", 0, "é"},
        {"😀€é", 2, "😀…"},
        {"WWWiiiiiWWWWWW", 9, "WWWii…"},
        {"iiiiiiiiiiiiiiiiiW", 18, "iiiiiiiiiiiiiiiii…"},
        {"", 0, ""},
    };
    for (const auto& [name, available, shown] : rows) {
        EXPECT_EQ(FitName(name, available, Width), shown) << name << " in " << available;
    }
}

TEST(FitInto, MovesAFrameWithoutResizingIt)
{
    const BRect area{0, 20, 1000, 800};
    const std::tuple<const char*, BRect, BRect> rows[] = {
        {"inside", {100, 100, 300, 200}, {100, 100, 300, 200}},
        {"on the limits", {10, 30, 990, 790}, {10, 30, 990, 790}},
        {"beyond right and bottom", {5000, 900, 5200, 1000}, {790, 690, 990, 790}},
        {"before left and top", {-900, -5, -800, 95}, {10, 30, 110, 130}},
        {"too wide", {-100, 100, 1100, 200}, {-210, 100, 990, 200}},
        {"too wide, on the left", {-2000, 100, -500, 200}, {10, 100, 1510, 200}},
    };
    for (const auto& [name, frame, fitted] : rows) {
        EXPECT_EQ(FitInto(frame, area, 10.0F), fitted) << name;
    }
    // The shift has single precision.
    const BRect far = FitInto({1e9, 100, 1e9 + 0.3, 200}, area, 10.0F);
    EXPECT_EQ(far.right, 1e9 + 0.3 + static_cast<double>(static_cast<float>(990 - (1e9 + 0.3))));
}

// The decisions of the Device window that need no window.

#include "frame_fitting.h"
#include "name_fitting.h"
#include "path_items.h"

#include <gtest/gtest.h>

namespace {

// Every character is as wide as this says; "…" is 1 wide.
float Width(std::string_view text)
{
    float width = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        width += (byte & 0xC0U) == 0x80U ? 0.0F : byte == 'W' ? 2.0F : 1.0F;
    }
    return width;
}

}  // namespace

TEST(FitName, LosesWholeCharactersUntilItFits)
{
    struct Row {
        const char* name;
        double available;
        const char* shown;
    };
    const Row rows[] = {
        {"boot.py", 7, "boot.py"},
        {"boot.py", 6.9, "boot.…"},
        {"boot.py", 2, "b…"},
        {"boot.py", 0, "b…"},
        {"b", 0, "b"},
        {"é", 0, "é"},
        {"éé", 1, "é…"},
        {"😀€é", 2, "😀…"},
        {"WWWiiiiiWWWWWW", 9, "WWWii…"},
        {"iiiiiiiiiiiiiiiiiW", 18, "iiiiiiiiiiiiiiiii…"},
        {"", 0, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FitName(row.name, row.available, Width), row.shown) << row.name;
    }
}

TEST(PathItems, LeadFromTheDirectoryUpToTheBoard)
{
    using Items = std::vector<PathItem>;
    struct Row {
        const char* path;
        Items items;
    };
    const Row rows[] = {
        {"", {}},
        {"/", {{"dev", "/", true}}},
        {"/lib", {{"lib", "//lib", false}, {"dev", "/", true}}},
        {"/lib/tests",
         {{"tests", "//lib/tests", false}, {"lib", "//lib", false}, {"dev", "/", true}}},
        {"//lib", {{"lib", "//lib", false}, {"dev", "/", true}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PathItems(row.path, "dev"), row.items) << row.path;
    }
}

TEST(FitInto, MovesAFrameWithoutResizingIt)
{
    const BRect area{0, 20, 1000, 800};
    struct Row {
        const char* name;
        BRect frame;
        BRect fitted;
    };
    const Row rows[] = {
        {"inside", {100, 100, 300, 200}, {100, 100, 300, 200}},
        {"on the limits", {10, 30, 990, 790}, {10, 30, 990, 790}},
        {"beyond right and bottom", {5000, 900, 5200, 1000}, {790, 690, 990, 790}},
        {"before left and top", {-900, -5, -800, 95}, {10, 30, 110, 130}},
        {"too wide", {-100, 100, 1100, 200}, {-210, 100, 990, 200}},
        {"too wide, on the left", {-2000, 100, -500, 200}, {10, 100, 1510, 200}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FitInto(row.frame, area, 10.0F), row.fitted) << row.name;
    }
    // The shift has single precision: 990 - 1e9 - 0.3 is narrowed.
    const BRect far = FitInto({1e9, 100, 1e9 + 0.3, 200}, area, 10.0F);
    EXPECT_EQ(far.right, 1e9 + 0.3 + static_cast<double>(static_cast<float>(990 - (1e9 + 0.3))));
}

#include "Text.h"

#include <gtest/gtest.h>

TEST(SplitLines, KeepsOrderAndContentWhateverTheEndings)
{
    const struct {
        const char* name;
        std::string_view text;
        std::vector<std::string_view> lines;
    } rows[] = {
        {"terminated", "a\nb\n", {"a", "b"}},
        {"unterminated", "a\r\nb", {"a", "b"}},
        {"empty lines", "\n\r\na", {"", "", "a"}},
        {"CR elsewhere stays", "a\rb\r\r\n", {"a\rb\r"}},
        {"NUL", std::string_view("a\0b\n", 4), {std::string_view("a\0b", 3)}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SplitLines(row.text), row.lines) << row.name;
    }
}

TEST(BackUpToPreviousGlyphStart, FindsTheCharacterThatAnIndexFallsIn)
{
    const std::string text = "aé€😀";  // Of 1, 2, 3 and 4 bytes.
    const std::size_t starts[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6};
    for (std::size_t i = 0; i < text.size(); ++i) {
        EXPECT_EQ(BackUpToPreviousGlyphStartIfNeeded(text, i), starts[i]) << i;
    }
    EXPECT_EQ(BackUpToPreviousGlyphStartIfNeeded("\x80\x80\x80\x80\x80", 4), 4U);
    EXPECT_EQ(BackUpToPreviousGlyphStartIfNeeded("é", 2), 2U) << "past the end";
}

TEST(SizeString, IsTheWidestFormThatFits)
{
    const struct {
        const char* bytes;
        float room;  // In characters.
        const char* shown;
    } rows[] = {
        {"1", 20, "1 byte"},     {"1234567", 20, "1,234,567 bytes"},
        {"999950", 8, "1.0 MB"}, {"99999999999999999999", 1, "99999999999999999999"},
        {"--", 1, "--"},
    };
    for (const auto& row : rows) {
        int choice = -1;
        float width = 0;
        const auto draw = [&](float room) {
            return SizeStringForBounds(row.bytes, choice, width, room, [](std::string_view text) {
                return static_cast<float>(text.size());
            });
        };
        EXPECT_EQ(draw(row.room), row.shown);
        EXPECT_EQ(draw(row.room), row.shown) << "the second time";
        EXPECT_GE(draw(100).size(), draw(1).size()) << "the choice is not updated";
    }
}

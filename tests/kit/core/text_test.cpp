#include "Text.h"

#include <gtest/gtest.h>

TEST(SplitLines, KeepsOrderAndContentWhateverTheEndings)
{
    const struct {
        const char* name;
        std::string_view text;
        std::vector<std::string_view> lines;
    } rows[] = {
        {"empty", "", {}},
        {"a line feed", "\n", {""}},
        {"ended", "a\nb\n", {"a", "b"}},
        {"not ended", "a\nb", {"a", "b"}},
        {"CR LF", "a\r\nb\r\n", {"a", "b"}},
        {"empty lines", "\n\r\na", {"", "", "a"}},
        {"CR elsewhere stays", "a\rb\n\r", {"a\rb", "\r"}},
        {"two CR before LF", "a\r\r\n", {"a\r"}},
        {"zero byte", std::string_view("a\0b\n", 4), {std::string_view("a\0b", 3)}},
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
    for (const std::size_t stray : {1U, 2U}) {
        EXPECT_EQ(BackUpToPreviousGlyphStartIfNeeded("a\x80\x80", stray), stray);
    }
    EXPECT_EQ(BackUpToPreviousGlyphStartIfNeeded("\x80\x80\x80\x80\x80", 4), 4U);
    EXPECT_EQ(BackUpToPreviousGlyphStartIfNeeded("é", 2), 2U) << "behind the text";
}

TEST(SizeString, IsTheWidestFormThatFits)
{
    const struct {
        const char* bytes;
        float room;  // In characters.
        const char* shown;
    } rows[] = {{"0", 20, "0 bytes"},
                {"1", 20, "1 byte"},
                {"139", 5, "139 B"},
                {"139", 2, "139"},
                {"999", 20, "999 bytes"},
                {"1234567", 20, "1,234,567 bytes"},
                {"1234567", 14.9F, "1.2 MB"},
                {"1234567", 5, "1.2M"},
                {"1234567", 1, "1.2M"},
                {"999949", 8, "999.9 kB"},
                {"999950", 8, "1.0 MB"},
                {"999999999999999999", 9, "1000.0 PB"},
                {"99999999999999999999", 1, "99999999999999999999"},
                {"--", 1, "--"},
                {"", 9, ""},
                {"12a", 9, "12a"},
                {"-5", 9, "-5"}};
    for (const auto& row : rows) {
        int choice = -1;
        float width = 0;
        int measured = 0;
        const auto draw = [&](float room) {
            measured = 0;
            return SizeStringForBounds(row.bytes, choice, width, room, [&](std::string_view text) {
                ++measured;
                return static_cast<float>(text.size());
            });
        };
        EXPECT_EQ(draw(row.room), row.shown);
        EXPECT_EQ(draw(row.room), row.shown) << "the second time";
        EXPECT_EQ(measured, 0) << "measured again";
        EXPECT_GE(draw(100).size(), draw(1).size()) << "another width is another choice";
    }
}

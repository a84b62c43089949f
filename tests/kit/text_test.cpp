#include "Text.h"

#include <gtest/gtest.h>

TEST(SplitLines, KeepsOrderAndContentWhateverTheEndings)
{
    using Lines = std::vector<std::string_view>;
    struct Row {
        const char* name;
        std::string_view text;
        Lines lines;
    };
    const Row rows[] = {
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

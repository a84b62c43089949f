#include "line_splitter.h"

#include <gtest/gtest.h>

namespace {

using Pieces = std::vector<std::string>;

const std::string kEuro = "\xE2\x82\xAC";

}  // namespace

TEST(LineSplitter, SplitsLinesWithTheirEndings)
{
    const struct {
        const char* name;
        Pieces fed, lines;
        std::string rest;
    } rows[] = {
        {"several lines at once", {"a\nb\n"}, {"a\n", "b\n"}, ""},
        {"a line in three parts", {"a", "b", "c\n"}, {"abc\n"}, ""},
        {"the ending alone", {"a\r", "\n"}, {"a\r\n"}, ""},
        {"empty lines", {"\n\n"}, {"\n", "\n"}, ""},
        {"no ending", {"a\nb"}, {"a\n"}, "b"},
        {"a NUL", {{"a\0b\n", 4}}, {{"a\0b\n", 4}}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        LineSplitter cutter;
        Pieces lines;
        for (const auto& bytes : row.fed) {
            std::ranges::move(cutter.Feed(bytes), std::back_inserter(lines));
        }
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(cutter.TakeRest(), row.rest);
    }
}

TEST(LineSplitter, AnUnfinishedLineKeepsBackAnUnfinishedCharacter)
{
    const std::pair<std::string, std::string> rows[] = {{"ab", ""},
                                                        {"a" + kEuro, ""},
                                                        {"a", "\xE2"},
                                                        {"a", "\xE2\x82"},
                                                        {"a", "\xF0\x9F\x98"},
                                                        {"", "\xC3"},
                                                        {"stray \x80\x80\x80\x80\x80", ""},
                                                        {"no beginning \xFF", ""}};
    for (const auto& [taken, kept] : rows) {
        LineSplitter cutter;
        cutter.Feed(taken + kept);
        EXPECT_EQ(cutter.TakeUnfinished(), taken);
        EXPECT_EQ(cutter.TakeRest(), kept);
    }
}

TEST(LineSplitter, ALineWithoutEndIsSplitBetweenCharactersAndLosesNothing)
{
    std::string text = "x";
    while (text.size() < 3 * LineSplitter::kMaxPiece) {
        text += kEuro;
    }
    LineSplitter cutter;
    std::string all;
    for (const auto& piece : cutter.Feed(text)) {
        EXPECT_LE(piece.size(), LineSplitter::kMaxPiece);
        EXPECT_TRUE(piece.ends_with(kEuro));
        all += piece;
    }
    EXPECT_GT(all.size(), 2 * LineSplitter::kMaxPiece);
    EXPECT_EQ(all + cutter.TakeRest(), text);
}

#include "line_splitter.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using Pieces = std::vector<std::string>;

const std::string kEuro = "\xE2\x82\xAC";

}  // namespace

TEST(LineSplitter, HandsOnLinesWithTheirEndings)
{
    struct Row {
        const char* name;
        Pieces fed;
        Pieces lines;
        const char* rest;
    };
    const Row rows[] = {
        {"several lines at once", {"a\nb\n"}, {"a\n", "b\n"}, ""},
        {"a line in three parts", {"a", "b", "c\n"}, {"abc\n"}, ""},
        {"the ending alone", {"a\r", "\n"}, {"a\r\n"}, ""},
        {"empty lines", {"\n\n"}, {"\n", "\n"}, ""},
        {"no ending", {"a\nb"}, {"a\n"}, "b"},
        {"a zero byte", {{"a\0b\n", 4}}, {{"a\0b\n", 4}}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        LineSplitter cutter;
        Pieces lines;
        for (const auto& bytes : row.fed) {
            for (auto& line : cutter.Feed(bytes)) {
                lines.push_back(std::move(line));
            }
        }
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(cutter.TakeRest(), row.rest);
    }
}

TEST(LineSplitter, AnUnfinishedLineKeepsBackAnUnfinishedCharacter)
{
    struct Row {
        const char* name;
        std::string fed;
        std::string taken;
    };
    const Row rows[] = {
        {"ASCII", "ab", "ab"},
        {"whole character", "a" + kEuro, "a" + kEuro},
        {"one byte of three", "a\xE2", "a"},
        {"two bytes of three", "a\xE2\x82", "a"},
        {"three bytes of four", "a\xF0\x9F\x98", "a"},
        {"only a beginning", "\xC3", ""},
        {"stray continuation bytes", "a\x80\x80\x80\x80\x80", "a\x80\x80\x80\x80\x80"},
        {"a byte that begins nothing", "a\xFF", "a\xFF"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        LineSplitter cutter;
        cutter.Feed(row.fed);
        EXPECT_EQ(cutter.TakeUnfinished(), row.taken);
        EXPECT_EQ(row.taken + cutter.TakeRest(), row.fed);
    }
}

TEST(LineSplitter, ALineWithoutEndIsCutBetweenCharactersAndLosesNothing)
{
    std::string text = "x";
    while (text.size() < 3 * LineSplitter::kMaxPiece) {
        text += kEuro;
    }
    LineSplitter cutter;
    Pieces pieces = cutter.Feed(text);
    ASSERT_EQ(pieces.size(), 3u);
    for (const auto& piece : pieces) {
        EXPECT_LE(piece.size(), LineSplitter::kMaxPiece);
        EXPECT_TRUE(piece.ends_with(kEuro));
    }
    EXPECT_EQ(std::accumulate(pieces.begin(), pieces.end(), std::string()) + cutter.TakeRest(),
              text);
}

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
        {"a line in three parts", {"a", "b", "c\n"}, {"abc\n"}, ""},
        {"a split line ending", {"a\r", "\n"}, {"a\r\n"}, ""},
        {"no ending", {"\n\nb"}, {"\n", "\n"}, "b"},
        {"a NUL", {{"a\0b\n", 4}}, {{"a\0b\n", 4}}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        LineSplitter splitter;
        Pieces lines;
        for (const auto& bytes : row.fed) {
            std::ranges::move(splitter.Feed(bytes), std::back_inserter(lines));
        }
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(splitter.TakeRest(), row.rest);
    }
}

TEST(LineSplitter, KeepsBackTheIncompleteCharacterOfAnUnfinishedLine)
{
    for (const auto& [taken, kept] : std::initializer_list<std::pair<std::string, std::string>>{
             {"a" + kEuro, ""},
             {"a", "\xE2\x82"},
             {"a", "\xF0\x9F\x98"},
             {"stray \x80\x80\x80\x80", ""}}) {
        LineSplitter splitter;
        splitter.Feed(taken + kept);
        EXPECT_EQ(splitter.TakeUnfinished(), taken);
        EXPECT_EQ(splitter.TakeRest(), kept);
    }
}

TEST(LineSplitter, SplitsAnEndlessLineBetweenCharactersWithoutLoss)
{
    std::string text = "x";
    while (text.size() < 3 * LineSplitter::kMaxPiece) {
        text += kEuro;
    }
    LineSplitter splitter;
    std::string all;
    for (const auto& piece : splitter.Feed(text)) {
        EXPECT_LE(piece.size(), LineSplitter::kMaxPiece);
        EXPECT_TRUE(piece.ends_with(kEuro));
        all += piece;
    }
    EXPECT_GT(all.size(), 2 * LineSplitter::kMaxPiece);
    EXPECT_EQ(all + splitter.TakeRest(), text);
}

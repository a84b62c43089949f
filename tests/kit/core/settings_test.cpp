#include "Settings.h"

#include <gtest/gtest.h>

TEST(RectSettings, ReadBackAsTheyWereWritten)
{
    for (const BRect rect : {BRect{-1e6, -1e6, 1e6, 1e6}, {-1.0 / 3, -0.0, 5e-324, 7}}) {
        const std::string text = RectValueForSettings(rect);
        const char* words[] = {"-frame", text.c_str(), "next", nullptr};
        const char* const* at = words;
        EXPECT_EQ(ParseAsRectFromArgv(at, "frame"), rect) << text;
        EXPECT_EQ(at, words + 2);
    }
    EXPECT_EQ(RectValueForSettings({100, 0.1, -2.5, 1e6}), "100,0.1,-2.5,1e+06");
}

TEST(RectSettings, RefusesMalformedOnesAndLeavesThemInPlace)
{
    const std::pair<const char*, const char*> rows[] = {
        {"-frame", nullptr},         {"-frames", "1,2,3,4"},  {"-frame", "1,2,3"},
        {"-frame", "1,2,3,4,5"},     {"-frame", "1,2,nan,4"}, {"-frame", "1,2,3,1e999"},
        {"-frame", "0,0,1000001,9"}, {"-frame", "9,0,9,9"},
    };
    for (const auto& [key, value] : rows) {
        const char* words[] = {key, value, nullptr};
        const char* const* at = words;
        EXPECT_EQ(ParseAsRectFromArgv(at, "frame"), std::nullopt) << (value ? value : "none");
        EXPECT_EQ(at, words);
    }
}

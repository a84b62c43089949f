#include "Settings.h"

#include <gtest/gtest.h>

TEST(RectSettings, ReadBackAsTheyWereWritten)
{
    const BRect rects[] = {
        {-1e6, -1e6, 1e6, 1e6}, {-1920, 24.5, 0.1, 1e5}, {-1.0 / 3, -0.0, 5e-324, 7}};
    for (const auto& rect : rects) {
        const std::string text = RectValueForSettings(rect);
        const char* words[] = {"-frame", text.c_str(), "next", nullptr};
        const char* const* at = words;
        EXPECT_EQ(ParseAsRectFromArgv(at, "frame"), rect) << text;
        EXPECT_EQ(at, words + 2);
    }
    EXPECT_EQ(RectValueForSettings({100, 0.1, -2.5, 1e6}), "100,0.1,-2.5,1e+06");
}

TEST(RectSettings, MalformedOnesAreLeftWhereTheyStand)
{
    using Words = std::vector<const char*>;
    const Words rows[] = {
        {nullptr},
        {"-frame", nullptr},
        {"frame", "1,2,3,4", nullptr},
        {"-frames", "1,2,3,4", nullptr},
        {"-frame", "", nullptr},
        {"-frame", "1,2,3", nullptr},
        {"-frame", "1,2,3,4,5", nullptr},
        {"-frame", "1,2,3,4 ", nullptr},
        {"-frame", "1;2;3;4", nullptr},
        {"-frame", "1,2,nan,4", nullptr},
        {"-frame", "1,2,3,inf", nullptr},
        {"-frame", "1,2,3,1e999", nullptr},
        {"-frame", "1, 2,3,4", nullptr},
        {"-frame", "0,0,9,1000001", nullptr},
        {"-frame", "0,0,1000001,9", nullptr},
        {"-frame", "-1000001,0,9,9", nullptr},
        {"-frame", "0,-1000001,9,9", nullptr},
        {"-frame", "9,0,9,9", nullptr},
        {"-frame", "0,9,9,9", nullptr},
    };
    for (const auto& words : rows) {
        const char* const* at = words.data();
        EXPECT_EQ(ParseAsRectFromArgv(at, "frame"), std::nullopt) << (words[0] ? words[0] : "none");
        EXPECT_EQ(at, words.data());
    }
}

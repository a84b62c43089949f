#include "plugin_settings.h"

#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Words = std::vector<std::string>;
using namespace std::string_literals;

PluginSettings SettingsOf(const std::string& path)
{
    PluginSettings settings(path);
    settings.RegisterKey("frame");
    settings.RegisterKey("color");
    return settings;
}

}  // namespace

TEST(PluginSettings, SettingsAreRestoredInTheNextSession)
{
    Runtime runtime;
    const TemporaryFolder folder;
    const auto inTheWay = folder.Write("made", "");
    const auto path = folder / "made/by/saving";
    auto first = SettingsOf(path);
    EXPECT_FALSE(first.Load());
    EXPECT_EQ(first.Words("frame"), nullptr);
    first.Replace("frame 1 2\ncolor red\nstranger 1\nframe  \t3 -4.5\n\nfram");
    EXPECT_FALSE(first.Save());
    std::filesystem::remove(inTheWay);
    ASSERT_TRUE(first.Save());

    auto second = SettingsOf(path);
    EXPECT_FALSE(second.Load());
    EXPECT_EQ(*second.Words("frame"), (Words{"frame", "3", "-4.5"}));
    second.Replace("color blue");
    ASSERT_TRUE(second.Save());
    EXPECT_EQ(ReadFile(path), "color blue\nframe  \t3 -4.5\n");
}

TEST(PluginSettings, LinesOfOtherPluginsAreNotChanged)
{
    Runtime runtime;
    const TemporaryFolder folder;
    const auto path = folder.Write("s", "# note \xFF\n\n other  a\r\nframe 1\nother b\nframe 2");
    auto settings = SettingsOf(path);
    EXPECT_FALSE(settings.Load());
    EXPECT_EQ(*settings.Words("frame"), (Words{"frame", "2"}));
    settings.Replace("frame 3\nother c\ncolor \0\n"s);
    folder.Write("s", ReadFile(path) + "\nmeanwhile 1\n");
    ASSERT_TRUE(settings.Save());
    EXPECT_EQ(ReadFile(path), "# note \xFF\n\n other  a\r\nframe 3\nother b\nmeanwhile 1\n");
    folder.Write("s", "left alone");
    ASSERT_TRUE(settings.Save());  // There is nothing to save.
    EXPECT_EQ(ReadFile(path), "left alone");
}

TEST(PluginSettings, AFileThatCannotBeReadIsRenamedAndNeverLost)
{
    Runtime runtime;
    const TemporaryFolder folder;
    const auto path = folder / "s";
    const auto aside = path + ".unreadable";
    const std::pair<std::string, std::string> rows[] = {
        {"frame 1\n\0"s, aside},
        {std::string(1024 * 1024 + 1, 'x'), aside + ".2"},
        {"\0"s, aside + ".3"}};
    for (const auto& [bytes, name] : rows) {
        folder.Write("s", bytes);
        auto settings = SettingsOf(path);
        EXPECT_TRUE(settings.Load().value_or("").ends_with("renamed to " + name + ".")) << name;
        EXPECT_EQ(settings.Words("frame"), nullptr);
        folder.Write("s", bytes);  // Corrupted again before it is saved.
        settings.Replace("frame 2\n");
        std::filesystem::rename(name, name + "-kept");
        ASSERT_TRUE(settings.Save());
        EXPECT_EQ(ReadFile(path), "frame 2\n");
        EXPECT_TRUE(ReadFile(name) == bytes && ReadFile(name + "-kept") == bytes) << name;
    }
    std::filesystem::remove(path);
    folder.Write("s/in-a-folder", "x");
    EXPECT_TRUE(SettingsOf(path).Load());
    EXPECT_EQ(ReadFile(aside + ".4/in-a-folder"), "x");
}

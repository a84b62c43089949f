#include "shortcuts.h"

#include "shortcut_code.h"

#include "wait.h"

#include <gtest/gtest.h>

#include <QSettings>

namespace {

const std::vector<NamedShortcut> kDefaults{
    {"Run", "Ctrl+R"}, {"Stop", "Ctrl+."}, {"List", ""}, {"Again", "Ctrl+R"}};
const std::vector<NamedShortcut> kReserved{{"Save", "Ctrl+S"}, {"Fold", "Ctrl+K, Ctrl+F"}};

QString TextOf(const Shortcuts& shortcuts, const std::string& command)
{
    return shortcuts.Shortcut(command).toString(QKeySequence::PortableText);
}

}  // namespace

TEST(Shortcuts, OneThatIsTakenIsRefusedWithItsHoldersName)
{
    Shortcuts shortcuts(kDefaults, kReserved);
    EXPECT_EQ(TextOf(shortcuts, "Again"), "");  // Of the defaults, the first holds.
    const std::pair<const char*, const char*> refused[] = {
        {"Ctrl+R", "Run"}, {"Ctrl+S", "Save"}, {"Ctrl+K", "Fold"}, {"Ctrl+R, A", "Run"}};
    for (const auto& [keys, holder] : refused) {
        EXPECT_EQ(shortcuts.SetShortcut("List", QKeySequence(keys)),
                  (std::expected<void, std::string>(std::unexpect, holder)));
    }
    EXPECT_EQ(TextOf(shortcuts, "List"), "");
    EXPECT_TRUE(shortcuts.SetShortcut("Run", QKeySequence("Ctrl+R")));  // Its own.
    EXPECT_TRUE(shortcuts.SetShortcut("Run", QKeySequence()));
    EXPECT_TRUE(shortcuts.SetShortcut("Stop", QKeySequence()));
    EXPECT_TRUE(shortcuts.SetShortcut("List", QKeySequence("Ctrl+R")));
}

TEST(Shortcuts, OnlyWhatDiffersFromTheDefaultsIsSaved)
{
    const TemporaryFolder folder;
    QSettings settings(QString::fromStdString(folder / "s.ini"), QSettings::IniFormat);
    settings.setValue("other", 1);
    const auto set = [&](const char* run, const char* list, const char* odd) {
        Shortcuts shortcuts(kDefaults, kReserved);
        EXPECT_TRUE(shortcuts.SetShortcut("Run", QKeySequence(run)));
        EXPECT_TRUE(shortcuts.SetShortcut("List", QKeySequence(list)));
        EXPECT_TRUE(shortcuts.SetShortcut("A/b", QKeySequence(odd)));
        shortcuts.Save(settings);
    };
    set("", "Ctrl+R", "Ctrl+,");
    Shortcuts loaded(kDefaults, kReserved);
    loaded.Load(settings);
    EXPECT_EQ(TextOf(loaded, "Run"), "");
    EXPECT_EQ(TextOf(loaded, "List"), "Ctrl+R");
    EXPECT_EQ(TextOf(loaded, "A/b"), "Ctrl+,");
    EXPECT_EQ(TextOf(loaded, "Stop"), "Ctrl+.");
    set("Ctrl+R", "", "");
    EXPECT_EQ(settings.allKeys(), QStringList("other"));
}

TEST(Shortcuts, WhatWasSpoiltByHandFallsBackToTheDefault)
{
    const TemporaryFolder folder;
    const auto path = folder.Write("s.ini",
                                   "[shortcuts]\nRun=Ctrl+Nonsense\nStop=Ctrl+S\nList=Ctrl+,\n"
                                   "Zoom=Ctrl+,\n");
    QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    Shortcuts shortcuts(kDefaults, kReserved);
    shortcuts.Load(settings);
    const std::pair<const char*, const char*> rows[] = {
        {"Run", "Ctrl+R"}, {"Stop", "Ctrl+."}, {"List", "Ctrl+,"}, {"Zoom", ""}};
    for (const auto& [command, keys] : rows) {
        EXPECT_EQ(TextOf(shortcuts, command), keys) << command;
    }
}

TEST(Shortcuts, ThePluginGetsKeyAndModifiers)
{
    const std::pair<const char*, std::pair<std::uint32_t, std::uint32_t>> rows[] = {
        {"", {0, 0}},
        {"Ctrl+R", {'R', 2}},
        {"Shift+ä", {0xC4, 1}},
        {"Meta+Alt+Ctrl+Shift+1", {'1', 0x47}},
        {"F1", {0x81, 0}},
        {"Meta+F31", {0x9F, 4}},
        {"F32", {0, 0}},
        {"Ctrl+Home", {0, 0}},
        {"Ctrl+Ж", {0, 0}},
        {"Alt+.", {'.', 0x40}},
        {"Ctrl+X, Ctrl+Y", {0, 0}},
    };
    for (const auto& [keys, expected] : rows) {
        EXPECT_EQ(ShortcutCode(QKeySequence(keys)), expected) << keys;
    }
}

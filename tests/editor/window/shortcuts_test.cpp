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

void ExpectLoaded(QSettings& settings, const std::vector<std::pair<const char*, QString>>& rows)
{
    Shortcuts shortcuts(kDefaults, kReserved);
    shortcuts.Load(settings);
    for (const auto& [command, keys] : rows) {
        EXPECT_EQ(TextOf(shortcuts, command), keys) << command;
    }
}

}  // namespace

TEST(Shortcuts, AShortcutInUseIsRefusedWithTheNameOfItsCommand)
{
    Shortcuts shortcuts(kDefaults, kReserved);
    EXPECT_EQ(TextOf(shortcuts, "Again"), "") << "two commands share a default";
    for (const auto& [keys, holder] :
         {std::pair("Ctrl+S", "Save"), {"Ctrl+K", "Fold"}, {"Ctrl+R, A", "Run"}}) {
        EXPECT_EQ(shortcuts.SetShortcut("List", QKeySequence(keys)),
                  (std::expected<void, std::string>(std::unexpect, holder)));
    }
    EXPECT_EQ(TextOf(shortcuts, "List"), "");
    EXPECT_TRUE(shortcuts.SetShortcut("Run", QKeySequence("Ctrl+R"))) << "its own";
    EXPECT_TRUE(shortcuts.SetShortcut("Run", QKeySequence()));
    EXPECT_TRUE(shortcuts.SetShortcut("List", QKeySequence("Ctrl+R")));
}

TEST(Shortcuts, OnlyDifferencesFromTheDefaultsAreSaved)
{
    const TemporaryFolder folder;
    QSettings settings(QString::fromStdString(folder / "s.ini"), QSettings::IniFormat);
    settings.setValue("other", 1);
    const auto save = [&](const char* run, const char* list, const char* odd) {
        Shortcuts shortcuts(kDefaults, kReserved);
        for (const auto& [command, keys] : {std::pair("Run", run), {"List", list}, {"A/b", odd}}) {
            EXPECT_TRUE(shortcuts.SetShortcut(command, QKeySequence(keys)));
        }
        shortcuts.Save(settings);
    };
    save("", "Ctrl+R", "Ctrl+,");
    ExpectLoaded(settings,
                 {{"Run", ""}, {"List", "Ctrl+R"}, {"A/b", "Ctrl+,"}, {"Stop", "Ctrl+."}});
    save("Ctrl+R", "", "");
    EXPECT_EQ(settings.allKeys(), QStringList("other"));
    settings.setValue("shortcuts/Run", "Ctrl+Nonsense");
    settings.setValue("shortcuts/Stop", "Ctrl+S");
    ExpectLoaded(settings, {{"Run", "Ctrl+R"}, {"Stop", "Ctrl+."}});  // Invalid and reserved.
}

TEST(Shortcuts, ThePluginGetsKeyAndModifiers)
{
    const std::pair<const char*, std::pair<std::uint32_t, std::uint32_t>> rows[] = {
        {"Meta+Alt+Ctrl+Shift+1", {'1', 0x47}},
        {"Shift+ä", {0xC4, 1}},
        {"Meta+F31", {0x9F, 4}},
        {"F32", {0, 0}},
        {"Ctrl+Ж", {0, 0}},
        {"Ctrl+X, Ctrl+Y", {0, 0}}};
    for (const auto& [keys, expected] : rows) {
        EXPECT_EQ(ShortcutCode(QKeySequence(keys)), expected) << keys;
    }
}

#include "plugin_commands.h"

#include "Menu.h"
#include "plugin_host.h"

#include <gtest/gtest.h>

TEST(PluginCommands, EveryCommandAndMenuItemOfThePluginHasARow)
{
    const auto plugin = PluginModule::Load(QUILP_BUNDLE "/quilp.so");
    ASSERT_TRUE(plugin) << plugin.error();
    Runtime runtime;
    PluginHost host(*plugin, runtime, [](const std::string&) {});
    host.SetDocument("/a.py");
    ASSERT_TRUE(host.Start());
    for (const auto& command : host.commands()) {
        EXPECT_NE(FindCommandByName(command.name), nullptr) << command.name;
    }
    std::vector<std::string> labelsOfFileCommands;
    runtime.handlers.choosePopUpItem = [&](const BMenu& menu) {
        for (const auto& item : menu.Items()) {
            const auto* const command = FindCommandByLabel(item->Label());
            EXPECT_NE(command, nullptr) << item->Label();
            if (NeedsFile(command)) {
                labelsOfFileCommands.push_back(item->Label());
            }
        }
        return nullptr;
    };
    plugin->Main(kPopUpRequested, &host);
    EXPECT_EQ(labelsOfFileCommands,
              (std::vector<std::string>{"Run", "Upload as main.py", "Upload "}));
}

// The entry points through which the host calls the plug-in.

#include "PluginInterface.h"
#include "commands.h"
#include "pop_up.h"
#include "quilp_window.h"
#include "runnable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" {
[[gnu::visibility("default")]] std::int32_t PluginMain(int message, PluginInterface* pi, ...);
[[gnu::visibility("default")]] const char* PluginHelp();
}

namespace {

struct Command {
    std::string_view name;
    std::string_view description;
    bool needsRunnable;
    void (*perform)(PluginInterface*);
};

constexpr std::array<Command, 5> kCommands{{
    {"QuilpRun", "Run Python source on attached Micro Python device", true,
     [](PluginInterface* pi) { Run(pi); }},
    {"QuilpStop", "Stop Running on Micro Python Device", false, Stop},
    {"QuilpUpload", "Upload Python source on attached Micro Python device", true,
     [](PluginInterface* pi) { Upload(pi, ""); }},
    {"QuilpUploadAsMain", "Upload Python source on attached Micro Python device as main.py", true,
     [](PluginInterface* pi) { Upload(pi, "main.py"); }},
    {"QuilpList", "List the contents of Micro Python device", false, List},
}};

constexpr const char* kSettingsKey = "QuilpWindowFrame";

std::int32_t AnswerLoad(PluginInterface* pi)
{
    // Defined by the host: the kind of the plug-in and its capabilities.
    pi->loadReply[0] = 19;
    pi->loadReply[1] = 5;
    return 1;
}

std::int32_t Register(PluginInterface* pi)
{
    for (const auto& command : kCommands) {
        pi->RegisterCommand(std::string(command.name), std::string(command.description));
    }
    pi->RegisterSettingsKey(kSettingsKey);
    return 1;
}

// A known command is acknowledged with 2 even if there is no file for it to act on.
std::int32_t PerformCommand(PluginInterface* pi)
{
    const std::string_view name = pi->commandName != nullptr ? pi->commandName : "";
    const auto command = std::ranges::find(kCommands, name, &Command::name);
    if (command == kCommands.end()) {
        return 0;
    }
    if (!command->needsRunnable || IsDocumentOrTargetRunnable(pi)) {
        command->perform(pi);
    }
    return 2;
}

std::int32_t OfferButton(PluginInterface* pi)
{
    if (pi->HasCurrentTarget() || pi->HasProjectTarget() || IsPythonSource(pi)) {
        pi->AddButton("Run", pi->bundle);
    }
    return 0;
}

}  // namespace

std::int32_t PluginMain(int message, PluginInterface* pi, ...)
{
    switch (message) {
        case kLoad: return AnswerLoad(pi);
        case kRegister: return Register(pi);
        case kButtonPressed: return Run(pi) ? 1 : 0;
        case kCommand: return PerformCommand(pi);
        case kOfferButton: return OfferButton(pi);
        case kPopUpRequested: RunPopUp(pi); return 1;
        case kReadSettings: QuilpWindow::ReadSettings(pi, pi->settingsArgv); return 1;
        case kSaveSettings: QuilpWindow::SaveSettings(pi); return 1;
        default: return 0;
    }
}

const char* PluginHelp()
{
    return "Run on micropython capable devices.\nWIP.\n";
}

// The entry points through which the host calls the plug-in.

#include "PluginInterface.h"
#include "commands.h"
#include "runnable.h"

#include <array>
#include <cstdint>
#include <string>

extern "C" {
[[gnu::visibility("default")]] std::int32_t PluginMain(int message, PluginInterface* pi, ...);
[[gnu::visibility("default")]] const char* PluginHelp();
}

namespace {

// The host's message codes.
enum Message : int {
    kLoad = 1,
    kRegister = 2,
    kButtonPressed = 100,
    kPopUpRequested = 101,
    kCommand = 103,
    kReadSettings = 104,
    kOfferButton = 307,
    kSaveSettings = 400,
};

struct CommandDescription {
    const char* name;
    const char* description;
};

constexpr std::array<CommandDescription, 5> kCommands{{
    {"QuilpRun", "Run Python source on attached Micro Python device"},
    {"QuilpStop", "Stop Running on Micro Python Device"},
    {"QuilpUpload", "Upload Python source on attached Micro Python device"},
    {"QuilpUploadAsMain", "Upload Python source on attached Micro Python device as main.py"},
    {"QuilpList", "List the contents of Micro Python device"},
}};

constexpr const char* kSettingsKey = "QuilpWindowFrame";

std::int32_t AnswerLoad(PluginInterface* pi)
{
    pi->loadReply[0] = 19;
    pi->loadReply[1] = 5;
    return 1;
}

std::int32_t Register(PluginInterface* pi)
{
    for (const auto& command : kCommands) {
        pi->RegisterCommand(command.name, command.description);
    }
    pi->RegisterSettingsKey(kSettingsKey);
    return 1;
}

// A known command is acknowledged with 2 also when there is nothing for it to act on.
std::int32_t PerformCommand(PluginInterface* pi)
{
    const std::string name = pi->commandName;
    if (name == "QuilpRun") {
        if (IsDocumentOrTargetRunnable(pi)) {
            Run(pi);
        }
        return 2;
    }
    if (name == "QuilpStop") {
        Stop(pi);
        return 2;
    }
    return 0;
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
        case kPopUpRequested:
        case kReadSettings:
        case kSaveSettings: return 1;
        default: return 0;
    }
}

const char* PluginHelp()
{
    return "Run on micropython capable devices.\nWIP.\n";
}

// A plug-in that throws exceptions or passes invalid arguments in response to each message, and
// hangs when it is to stop the program on the board.
#include "PluginInterface.h"
#include "SimpleShell.h"

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

extern "C" std::int32_t PluginMain(int message, PluginInterface* pi, ...);
extern "C" const char* PluginHelp();

namespace {

int queries = 0;

[[noreturn]] void Hang()
{
    std::fputs("hangs\n", stderr);
    for (;;) {
        pause();
    }
}

// Run throws in its callbacks, Stop hangs, and other commands throw at once.
std::int32_t PerformCommand(const std::string& name)
{
    static auto shell = std::make_shared<SimpleShell>(
        [](std::string&&) { throw std::runtime_error("thrown in output"); }, "");
    if (name == "QuilpRun") {
        shell->Run("echo", [] { throw std::runtime_error("thrown in completion"); });
        return 2;
    }
    if (name == "QuilpStop") {
        Hang();
    }
    throw std::runtime_error("thrown in " + name);
}

}  // namespace

std::int32_t PluginMain(int message, PluginInterface* pi, ...)
{
    switch (message) {
        case 1: return 1;
        case 2:
            pi->RegisterCommand("", "");
            pi->RegisterCommand("A & B\n", "nonsense");
            pi->RegisterSettingsKey("no key at all");
            return -1;
        case 307:
            ++queries;
            pi->AddButton("", nullptr);
            return 99;
        case 400: pi->WriteSettings("%s\n%s", "not a line", "\t"); throw 5;
        case 103: return PerformCommand(pi->commandName);
        default:
            throw std::runtime_error("message " + std::to_string(message) + " after query " +
                                     std::to_string(queries));
    }
}

const char* PluginHelp()
{
    throw std::runtime_error("no help");
}

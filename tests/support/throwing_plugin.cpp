// A plug-in that throws exceptions or passes invalid arguments in response to each message, and
// hangs when it is to stop the program on the board.
#include "PluginInterface.h"

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

extern "C" std::int32_t PluginMain(int message, PluginInterface* pi, ...);
extern "C" const char* PluginHelp();

namespace {

[[noreturn]] void Hang()
{
    std::fputs("hangs\n", stderr);
    for (;;) {
        pause();
    }
}

}  // namespace

std::int32_t PluginMain(int message, PluginInterface* pi, ...)
{
    if (message == 103 && pi->commandName == std::string("QuilpStop")) {
        Hang();
    }
    switch (message) {
        case 1: return 1;
        case 2:
            pi->RegisterCommand("", "");
            pi->RegisterCommand("A & B\n", "nonsense");
            pi->RegisterSettingsKey("no key at all");
            return -1;
        case 307: pi->AddButton("", nullptr); return 99;
        case 400: pi->WriteSettings("%s\n%s", "not a line", "\t"); throw 5;
        default: throw std::runtime_error("message " + std::to_string(message));
    }
}

const char* PluginHelp()
{
    throw std::runtime_error("no help");
}

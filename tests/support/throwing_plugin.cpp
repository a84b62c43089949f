// A plug-in that throws exceptions or passes invalid arguments in response to each message.
#include "PluginInterface.h"

#include <stdexcept>

extern "C" std::int32_t PluginMain(int message, PluginInterface* pi, ...);
extern "C" const char* PluginHelp();

static int queries = 0;

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
        default:
            throw std::runtime_error("message " + std::to_string(message) + " after query " +
                                     std::to_string(queries));
    }
}

const char* PluginHelp()
{
    throw std::runtime_error("no help");
}

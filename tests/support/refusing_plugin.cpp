// A plug-in that does not take its host on.
#include "PluginInterface.h"

extern "C" std::int32_t PluginMain(int message, PluginInterface* pi, ...);
extern "C" const char* PluginHelp();

std::int32_t PluginMain(int /*message*/, PluginInterface* /*pi*/, ...)
{
    return 7;
}

const char* PluginHelp()
{
    return "";
}

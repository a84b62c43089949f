#include "with_plugin.h"

#include <cstdio>

int WithPlugin(const char* plugin, const std::function<int(const PluginModule&, Runtime&)>& measure)
{
    const auto module = PluginModule::Load(plugin);
    if (!module) {
        std::fprintf(stderr, "%s\n", module.error().c_str());
        return 1;
    }
    Runtime runtime;
    return measure(*module, runtime);
}

#include "run_with_plugin.h"

#include "plugin_module.h"
#include "runtime.h"

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

int RunWithPlugin(const char* plugin, const std::function<void(PluginHost&)>& measure)
{
    return WithPlugin(plugin, [&](const PluginModule& module, Runtime& runtime) {
        PluginHost host(module, runtime, [](const std::string&) {});
        measure(host);
        runtime.ShutDown();
        return 0;
    });
}

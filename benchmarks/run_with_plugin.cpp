#include "run_with_plugin.h"

#include "plugin_module.h"
#include "runtime.h"

#include <cstdio>

int RunWithPlugin(const char* plugin, const std::function<void(EditorHost&)>& measure)
{
    const auto module = PluginModule::Load(plugin);
    if (!module) {
        std::fprintf(stderr, "%s\n", module.error().c_str());
        return 1;
    }
    Runtime runtime;
    EditorHost host(*module, runtime, [](const std::string&) {});
    measure(host);
    runtime.ShutDown();
    return 0;
}

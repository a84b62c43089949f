#include "rebinder.h"

#include "runtime.h"

PluginInterface::Rebinder MakeRebinderFor(PluginInterface& host)
{
    return [&host, &queue = Runtime::Current().queue()](const PluginInterface::PluginWork& work) {
        if (queue.IsUiThread()) {
            work(&host);
        } else {
            queue.Post([&host, work] { work(&host); });
        }
    };
}

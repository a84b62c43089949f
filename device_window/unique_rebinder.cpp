#include "unique_rebinder.h"

#include <memory>
#include <utility>

UniqueRebinder MakeUniqueRebinder(PluginInterface* pi)
{
    return [rebind = pi->MakeRebinder(0)](unique_function<void(PluginInterface*)> work) {
        const auto holder =
            std::make_shared<unique_function<void(PluginInterface*)>>(std::move(work));
        rebind([holder](PluginInterface* p) { (*holder)(p); });
    };
}

#pragma once

#include "PluginInterface.h"
#include "unique_function.h"

#include <functional>

// Makes the host call the work on the user-interface thread, with a valid host: at once when it is
// called there, otherwise later. It may outlive the window. [any]
using UniqueRebinder = std::function<void(unique_function<void(PluginInterface*)>)>;

// Adapts the host's rebinder, which accepts only copyable work, to move-only work. [ui]
UniqueRebinder MakeUniqueRebinder(PluginInterface* pi);

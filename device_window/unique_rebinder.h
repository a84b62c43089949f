#pragma once

#include "PluginInterface.h"
#include "unique_function.h"

#include <functional>

// Has the host call the work on the user-interface thread, with a valid host: at once when it is
// called there, later from any other thread. May outlive its maker.
using UniqueRebinder = std::function<void(unique_function<void(PluginInterface*)>)>;

// The host's rebinder, which takes copyable work only, for work that has one owner.
UniqueRebinder MakeUniqueRebinder(PluginInterface* pi);

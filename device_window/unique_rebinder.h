#pragma once

#include "PluginInterface.h"
#include "unique_function.h"

#include <functional>

// Has the host call work later, on the user-interface thread, with a valid host. Usable on any
// thread, also when who made it is gone.
using UniqueRebinder = std::function<void(unique_function<void(PluginInterface*)>)>;

// The host's rebinder, which takes copyable work only, for work that has one owner.
UniqueRebinder MakeUniqueRebinder(PluginInterface* pi);

#pragma once

#include "PluginInterface.h"

// The rebinder of every host: it calls the work at once on the user-interface thread, so that no
// command of the user's can come between two steps of a chain of operations, and posts it to the
// Runtime's queue from any other thread. `host` must outlive the Runtime's last task.
PluginInterface::Rebinder MakeRebinderFor(PluginInterface& host);

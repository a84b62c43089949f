#pragma once

#include "PluginInterface.h"

// Makes the rebinder that all hosts use. On the user-interface thread it calls the work
// immediately, so that no user command can run between two steps of a chain of operations; on any
// other thread it posts the work to the Runtime's queue. `host` must outlive the Runtime's last
// task.
PluginInterface::Rebinder MakeRebinderFor(PluginInterface& host);

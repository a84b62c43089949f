#pragma once

#include "PluginInterface.h"

// The rebinder of every host: it calls the work at once when it is called on the user-interface
// thread, and posts it to the Runtime's queue from any other thread. `host` and the Runtime must
// outlive the rebinder's last call. Made on the user-interface thread.
PluginInterface::Rebinder MakeRebinderFor(PluginInterface& host);

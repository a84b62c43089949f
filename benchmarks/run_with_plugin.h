#pragma once

#include "plugin_host.h"

#include <functional>

// Both functions load the plug-in and return the program's exit status. The application object must
// exist.

int WithPlugin(const char* plugin,
               const std::function<int(const PluginModule&, Runtime&)>& measure);

// The host that is passed to `measure` discards text that is written to the worksheet.
int RunWithPlugin(const char* plugin, const std::function<void(PluginHost&)>& measure);

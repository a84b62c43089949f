#pragma once

#include "plugin_host.h"

#include <functional>

// Both load the plug-in and return the program's exit status. Called when there is an application
// object.

int WithPlugin(const char* plugin,
               const std::function<int(const PluginModule&, Runtime&)>& measure);

// Lets a measurement use the plug-in, with an editor that drops what is written to the worksheet.
int RunWithPlugin(const char* plugin, const std::function<void(PluginHost&)>& measure);

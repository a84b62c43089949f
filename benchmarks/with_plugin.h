#pragma once

#include "plugin_module.h"
#include "runtime.h"

#include <functional>

// Loads the plug-in and returns the program's exit status. The application object must exist.
int WithPlugin(const char* plugin,
               const std::function<int(const PluginModule&, Runtime&)>& measure);

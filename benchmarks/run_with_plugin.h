#pragma once

#include "editor_host.h"

#include <functional>

// Loads the plug-in and lets a measurement use it, with an editor that drops what is written to the
// worksheet. Called when there is an application object. Returns the program's exit status.
int RunWithPlugin(const char* plugin, const std::function<void(EditorHost&)>& measure);

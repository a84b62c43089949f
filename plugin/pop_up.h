#pragma once

#include "PluginInterface.h"

#include <functional>
#include <string>

class BMenu;

// The menu of all commands. [ui]

// Shows the menu below the control that requested it. Returns when the menu has closed and the
// chosen command has been started.
void RunPopUp(PluginInterface* pi);

// Adds an item with the host's shortcut for the command. The host is queried for an empty name as
// well.
void AddOneMenuItem(PluginInterface* pi, BMenu* menu, std::string label,
                    const std::function<void()>& action, const std::string& commandName);

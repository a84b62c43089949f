#pragma once

#include "PluginInterface.h"

#include <functional>
#include <string>

class BMenu;

// The menu of all commands. Used on the user-interface thread.

// Shows the menu under the control that it was asked for with. Returns when the menu has closed and
// the command that was chosen was given.
void RunPopUp(PluginInterface* pi);

// Adds an item with the shortcut that the host has for the command; the host is asked also for an
// empty command name.
void AddOneMenuItem(PluginInterface* pi, BMenu* menu, std::string label,
                    const std::function<void()>& action, const std::string& commandName);

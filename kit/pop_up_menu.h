#pragma once

#include "Menu.h"

#include <functional>
#include <string>

// For hosts without windows: while there is a chooser, no pop-up menu is shown, and the action of
// the item that the chooser picks runs at once; null picks none. What that action throws is the
// host's, like all that is thrown in a call of its own. Empty for none. Used on the user-interface
// thread.
void SetPopUpChooser(std::function<const BMenuItem*(const BMenu& menu)> chooser);

// While there is a guard, the action of an item that the user has chosen runs only when the guard
// agrees, which is asked once the menu is closed. Empty for none. Used on the user-interface
// thread.
void SetPopUpGuard(std::function<bool(const std::string& label)> mayRun);

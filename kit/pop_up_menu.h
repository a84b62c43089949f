#pragma once

#include "Menu.h"

#include <functional>

// For hosts without windows: while there is a chooser, no pop-up menu is shown, and the action of
// the item that the chooser picks runs at once; null picks none. What that action throws is the
// host's, like all that is thrown in a call of its own. Empty for none. Used on the user-interface
// thread.
void SetPopUpChooser(std::function<const BMenuItem*(const BMenu& menu)> chooser);

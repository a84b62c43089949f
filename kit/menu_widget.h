#pragma once

#include "Menu.h"

#include <QMenu>

// What is on the screen for a menu: made when it opens, with copies of its items, so that these may
// be replaced meanwhile. `choose` is called with the action of the item that is chosen.
QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent,
                      const std::function<void(const std::function<void()>& action)>& choose);

// An item's label as a menu shows it: no character of it is a mnemonic.
QString MenuLabel(const BMenuItem& item);

QIcon MenuIcon(const BMenuItem& item);

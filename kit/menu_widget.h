#pragma once

#include "Menu.h"

#include <QMenu>

// What is on the screen for a menu: made when it opens, with copies of its items, so that these may
// be replaced meanwhile. `choose` is called with the action of the item that is chosen.
QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent,
                      const std::function<void(const std::function<void()>& action)>& choose);

// The same for a menu of a window, filled anew: the chosen action is called into the window that
// the owner belongs to. Deletes itself when it closes. Null when there is nothing to show.
QMenu* MakeMenuWidgetOf(QWidget& owner, const BMenu& menu);

// An item's label as a menu shows it: no character of it is a mnemonic.
QString MenuLabel(const BMenuItem& item);

QIcon MenuIcon(const BMenuItem& item);

#pragma once

#include "Menu.h"

#include <QMenu>

using MenuChoice =
    std::function<void(const std::string& label, const std::function<void()>& action)>;

// What is on the screen for a menu: made when it opens, with copies of its items, so that these may
// be replaced meanwhile. `choose` is called with what the chosen item is and does.
QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent, const MenuChoice& choose);

// The same for a menu of a window, filled anew: the chosen action is called into the window that
// the owner belongs to. Deletes itself when it closes. Null when there is nothing to show.
QMenu* MakeMenuWidgetOf(QWidget& owner, const BMenu& menu);

// An item's label as a menu shows it: no character of it is a mnemonic.
QString MenuLabel(const BMenuItem& item);

QIcon MenuIcon(const BMenuItem& item);

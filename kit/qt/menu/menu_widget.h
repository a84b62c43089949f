#pragma once

#include "Menu.h"

#include <QMenu>

using MenuChoice =
    std::function<void(const std::string& label, const std::function<void()>& action)>;

// Creates the widget of a menu. It is created when the menu opens and copies the items, so they may
// be replaced while it is open. `choose` is called with the label and action of the chosen item.
QMenu* MakeMenuWidget(const BMenu& menu, QWidget* parent, const MenuChoice& choose);

// Populates a menu of a window and creates its widget. The action of the chosen item is called as
// code of the window that `owner` belongs to. The widget deletes itself when it closes. Null if the
// menu is empty.
QMenu* MakeWindowMenu(QWidget& owner, const BMenu& menu);

QIcon MenuIcon(const BMenuItem& item);

enum class MenuOpening { ByMouse, ByKey };

// To be called just before the menu opens: makes the item the active one if a key opens the menu.
void ActivateItem(QMenu& menu, QAction* item, MenuOpening opening);

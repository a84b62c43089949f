#pragma once

#include <string>
#include <vector>

class QAction;
class QMenu;

// The menu that is open; null for none.
QMenu* OpenMenu();
std::vector<std::string> LabelsOf(const QMenu& menu);
// The item with this label. Without one the test fails, and it is the first.
QAction* ItemOf(const QMenu& menu, const std::string& label);
void ClickItem(QMenu& menu, const std::string& label);

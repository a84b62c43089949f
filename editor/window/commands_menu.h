#pragma once

#include "plugin_host.h"
#include "shortcuts.h"

#include <QMenu>

#include <string>
#include <vector>

// The menu of the commands that the plug-in registered, with their shortcuts. [ui]
class CommandsMenu final : public QMenu {
    Q_OBJECT

  public:
    // `shortcuts` must outlive the menu.
    CommandsMenu(Shortcuts& shortcuts, QWidget* parent);

    // Inserts the commands before the existing items. Call it only once.
    void AddCommands(const std::vector<RegisteredCommand>& commands);

    // Opens the dialog in which the user changes the shortcuts.
    void ChangeShortcuts();

  Q_SIGNALS:
    void Chosen(const std::string& command);

  private:
    void ShowShortcuts();

    Shortcuts& shortcuts_;
    std::vector<RegisteredCommand> commands_;
    std::vector<QAction*> commandActions_;  // In the order of the commands.
};

#pragma once

#include "plugin_host.h"
#include "shortcuts.h"

#include <QMenu>

#include <string>
#include <vector>

// The commands that the plug-in registered, with their shortcuts. Used on the user-interface
// thread.
class CommandsMenu final : public QMenu {
    Q_OBJECT

  public:
    // `shortcuts` must outlive the menu.
    CommandsMenu(Shortcuts& shortcuts, QWidget* parent);

    // In front of what is in the menu already. Once.
    void AddCommands(const std::vector<RegisteredCommand>& commands);

    // Lets the user change the shortcuts.
    void ChangeShortcuts();

  Q_SIGNALS:
    void Chosen(const std::string& command);

  private:
    void ShowShortcuts();

    Shortcuts& shortcuts_;
    std::vector<RegisteredCommand> commands_;
    std::vector<QAction*> commandActions_;  // In the order of the commands.
};

#include "commands_menu.h"

#include "plugin_commands.h"
#include "shortcuts_dialog.h"

CommandsMenu::CommandsMenu(Shortcuts& shortcuts, QWidget* parent)
    : QMenu(tr("&Commands"), parent), shortcuts_(shortcuts)
{
}

void CommandsMenu::AddCommands(const std::vector<RegisteredCommand>& commands)
{
    commands_ = commands;
    auto* const end = actions().isEmpty() ? nullptr : actions().constFirst();
    for (const auto& command : commands_) {
        auto* const action = new QAction(CommandLabel(command), this);
        action->setStatusTip(QString::fromStdString(command.description));
        action->setToolTip(action->statusTip());
        connect(action, &QAction::triggered, this,
                [this, name = command.name] { Q_EMIT Chosen(name); });
        insertAction(end, action);
        commandActions_.push_back(action);
    }
    ShowShortcuts();
}

void CommandsMenu::ShowShortcuts()
{
    for (std::size_t i = 0; i < commands_.size(); ++i) {
        commandActions_[i]->setShortcut(shortcuts_.Shortcut(commands_[i].name));
    }
}

void CommandsMenu::ChangeShortcuts()
{
    if (ShortcutsDialog(shortcuts_, commands_, parentWidget()).exec() == QDialog::Accepted) {
        ShowShortcuts();
    }
}

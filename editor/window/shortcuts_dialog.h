#pragma once

#include "plugin_host.h"
#include "shortcuts.h"

#include <QDialog>
#include <QKeySequenceEdit>

#include <vector>

class QLabel;

// The dialog in which the user changes the shortcuts of the plug-in's commands. The changes take
// effect when the dialog is accepted, which is disabled while shortcuts conflict. [ui]
class ShortcutsDialog final : public QDialog {
  public:
    // `shortcuts` must outlive the dialog.
    ShortcutsDialog(Shortcuts& shortcuts, const std::vector<RegisteredCommand>& commands,
                    QWidget* parent);
    ~ShortcutsDialog() override;

    void accept() override;

  private:
    void Check();
    // The shortcuts as edited. The error is a message about the first conflict.
    std::expected<Shortcuts, QString> EditedShortcuts() const;
    QString LabelOf(const std::string& command) const;

    Shortcuts& shortcuts_;
    const std::vector<RegisteredCommand> commands_;
    std::vector<QKeySequenceEdit*> edits_;  // In the order of the commands.
    QLabel* problem_;
    QPushButton* ok_;
};

#pragma once

#include "plugin_host.h"
#include "shortcuts.h"

#include <QDialog>
#include <QKeySequenceEdit>

#include <vector>

class QLabel;

// Where the user changes the shortcuts of the plug-in's commands. Nothing is changed before it is
// accepted, and it cannot be accepted while two would clash.
class ShortcutsDialog final : public QDialog {
  public:
    // `shortcuts` must outlive the dialog.
    ShortcutsDialog(Shortcuts& shortcuts, const std::vector<RegisteredCommand>& commands,
                    QWidget* parent);
    ~ShortcutsDialog() override;

    void accept() override;

  private:
    void Check();
    // What the rows say. The error tells what clashes.
    std::expected<Shortcuts, QString> Wanted() const;
    QString LabelOf(const std::string& command) const;

    Shortcuts& shortcuts_;
    const std::vector<RegisteredCommand> commands_;
    std::vector<QKeySequenceEdit*> edits_;  // Of each command.
    QLabel* problem_;
    QPushButton* ok_;
};

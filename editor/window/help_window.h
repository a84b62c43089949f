#pragma once

#include <QDialog>

class QMenuBar;
class QTextBrowser;

// Explains the editor: its keys, the worksheet, boards and the plug-in. [ui]
class HelpWindow final : public QDialog {
  public:
    explicit HelpWindow(QWidget* parent);

    // Shows the window, or brings it to the front. The keys are those that the actions of the menus
    // have now. `pluginHelp` is plain text.
    void Open(const QMenuBar& menus, const QString& pluginHelp);

  private:
    QTextBrowser* page_;  // Owned by its Qt parent.
};

void ShowAbout(QWidget* parent);

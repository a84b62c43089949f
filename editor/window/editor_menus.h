#pragma once

#include "editor_parts.h"
#include "shortcuts.h"

#include <QKeySequence>
#include <QObject>

#include <functional>
#include <vector>

class BoardMenu;
class CommandsMenu;
class DocumentPage;
class QAction;
class QMenu;

// The menus of the editor's window. [ui]
class EditorMenus final : public QObject {
    Q_OBJECT

  public:
    // Fills the window's menu bar. `shortcuts` must outlive this object.
    EditorMenus(const EditorParts& parts, Shortcuts& shortcuts);

    CommandsMenu& commandsMenu() { return *commandsMenu_; }
    BoardMenu& boardMenu() { return *boardMenu_; }

    // Adds an action that is disabled while no document is open.
    void AddDocumentAction(QAction* action) { documentActions_.push_back(action); }
    void EnableDocumentActions(bool enable);

    // The shortcuts of the window and its text views, which plug-in commands must not use.
    std::vector<NamedShortcut> ReservedShortcuts() const;

  Q_SIGNALS:
    void CommandMenuRequested();
    void HelpRequested();

  private:
    QMenu* AddMenu(const QString& title);
    QAction* Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                 const std::function<void()>& action);
    void AddForDocument(QMenu* menu, const QString& text, const QKeySequence& keys,
                        const std::function<void(DocumentPage& page)>& action);
    void MakeFileMenu();
    void MakeRecentMenu(QMenu* parent);
    void MakeEditMenu();
    void MakeSearchMenu();
    void MakeViewMenu();
    void AddTabActions(QMenu* menu);
    void MakeAppearanceMenu(QMenu* parent);
    void MakeCommandsMenu();
    void MakeProjectMenu();
    void MakeWorksheetMenu();
    void MakeBoardMenu();
    void MakeHelpMenu();

    EditorParts parts_;
    CommandsMenu* commandsMenu_;      // Owned by the window.
    BoardMenu* boardMenu_ = nullptr;  // Owned by the window.
    std::vector<QAction*> documentActions_;
};

#pragma once

#include "board_monitor.h"
#include "document_tabs.h"
#include "editor_host.h"
#include "plugin_settings.h"
#include "session.h"
#include "shortcuts.h"
#include "user_folders.h"
#include "user_shell.h"
#include "worksheet.h"

#include <QMainWindow>

#include <string>
#include <vector>

class FindBar;
class MessageBar;
class QActionGroup;
class QLabel;
class QSplitter;
class QToolBar;
class QToolButton;
class QsciScintilla;

// Where the programs and files are that the editor works with.
struct EditorPlaces {
    UserFolders folders;
    std::string boardProgram;
    std::string boardFolder;  // The virtual board's files.
};

// The editor's window: the documents, the worksheet below them, and the plug-in's commands. Made on
// the user-interface thread, where all of it is used. It must be destroyed after Runtime::ShutDown,
// so that nothing of the plug-in's still writes to it.
class MainWindow final : public QMainWindow {
    Q_OBJECT

  public:
    // `plugin` and `runtime` must outlive the window.
    MainWindow(const PluginModule& plugin, Runtime& runtime, const EditorPlaces& places);
    ~MainWindow() override;

    // Loads the plug-in and what the editor looked like last. The error is a sentence.
    std::expected<void, std::string> Start();

    // A folder among them becomes the project. The documents of last time when `files` is empty.
    // What cannot be opened is told in the window.
    void OpenFiles(const QStringList& files);
    void SetTarget(const QString& path);
    void SetEditorAppearance(Appearance appearance);
    void AttachVirtualBoard();
    void OpenDeviceWindow();

    // Tells the user of something that the plug-in threw.
    void TellOfPlugin(const std::string& error);

    // Ends without a question, as when the desktop's session ends: what is not saved is there again
    // at the next start.
    void EndAtOnce();

    DocumentTabs& documents() { return *tabs_; }
    Worksheet& worksheet() { return *worksheet_; }

  Q_SIGNALS:
    // Everything is saved, and the program may end.
    void Ended();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    // The window and its parts.
    void MakeCentralWidget();
    void MakeStatusBar();
    void ConnectParts();
    void ShowFront();
    void ShowPosition();
    void ShowTarget();
    void ShowBoard();
    void Tell(const QString& message);
    void GoToMessage();
    void OfferRecovery();
    void CheckDisk();

    // The session.
    Session Current() const;
    void Restore(const Session& session);
    QStringList SaveEverything(const Session& session);
    void SavePluginSettings();
    std::string SessionPath() const;
    std::string WorksheetPath() const;

    // The menus.
    QAction* Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                 const std::function<void()>& action);
    void MakeMenus();
    void MakeFileMenu();
    void MakeRecentMenu(QMenu* parent);
    void MakeEditMenu();
    void MakeSearchMenu();
    void MakeViewMenu();
    void MakeAppearanceMenu(QMenu* parent);
    void MakeCommandsMenu();
    void AddPluginCommands();
    void MakeProjectMenu();
    void MakeWorksheetMenu();
    void MakeBoardMenu();
    void MakeHelpMenu();
    void MakeToolBar();
    std::vector<NamedShortcut> OwnShortcuts() const;
    void ShowShortcuts();
    void ChangeShortcuts();
    void ShowPluginHelp();
    void ShowAbout();

    // What the menus do.
    QsciScintilla* FocusedText() const;
    bool IsFindBarFocused() const;
    void Search(const std::function<void()>& search);
    void OpenByDialog();
    void GoToLine();
    void ZoomTo(int zoom);
    void TakeZoom();
    void SwitchToWorksheetAndBack();
    void OpenFolderByDialog();
    void SetFolder(const QString& folder);
    void FindProjectTarget();

    // The plug-in's commands.
    bool SaveForCommand();
    bool HasSomethingToRun();
    void Perform(const std::string& command);
    void PressControl();
    void OpenPopUp(const QWidget& control);
    void OpenPopUpFromMenu();
    void ShowControls();
    void RunLine(const QString& text);
    void FollowLink(const QString& path, int line);
    std::string WorkingFolder() const;

    const PluginModule& plugin_;
    Runtime& runtime_;
    EditorPlaces places_;
    PluginSettings settings_;
    EditorHost host_;
    Shortcuts shortcuts_;
    Session session_;

    BoardMonitor* board_ = nullptr;
    UserShell* shell_ = nullptr;
    DocumentTabs* tabs_ = nullptr;
    Worksheet* worksheet_ = nullptr;
    FindBar* findBar_ = nullptr;
    QSplitter* splitter_ = nullptr;
    MessageBar* messages_ = nullptr;
    MessageBar* recovery_ = nullptr;
    QToolBar* toolBar_ = nullptr;
    QAction* controlsEnd_ = nullptr;
    std::vector<std::string> offeredControls_;
    std::vector<QAction*> controlActions_;
    QMenu* commandsMenu_ = nullptr;
    QAction* commandsEnd_ = nullptr;
    QMenu* boardMenu_ = nullptr;
    QActionGroup* appearances_ = nullptr;
    std::map<std::string, QAction*> commandActions_;
    QLabel* position_ = nullptr;
    QLabel* target_ = nullptr;
    QLabel* format_ = nullptr;
    QToolButton* boardButton_ = nullptr;
    QString projectTarget_;
    QTimer diskTimer_;
};

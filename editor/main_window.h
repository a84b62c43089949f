#pragma once

#include "board_monitor.h"
#include "document_tabs.h"
#include "editor_host.h"
#include "plugin_settings.h"
#include "project.h"
#include "session.h"
#include "shortcuts.h"
#include "user_folders.h"
#include "user_shell.h"
#include "worksheet.h"

#include <QMainWindow>

#include <string>
#include <vector>

class CommandsMenu;
class ControlToolBar;
class EditorStatusBar;
class FindBar;
class MessageBar;
class QSplitter;
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
    void SetEditorAppearance(Appearance appearance);
    void OpenDeviceWindow();

    // Tells the user of something that the plug-in threw.
    void TellOfPlugin(const std::string& error);

    // Ends without a question, as when the desktop's session ends: what is not saved is there again
    // at the next start.
    void EndAtOnce();

    DocumentTabs& documents() { return *tabs_; }
    Project& project() { return *project_; }
    BoardMonitor& board() { return *board_; }
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
    void ConnectParts();
    void ConnectFront();
    void ShowFront();
    void ShowPosition();
    void ShowProject();
    void ShowControls();
    void Tell(const QString& message);
    void GoToMessage();
    void OfferRecovery();
    void OfferSlowFile(const QString& path, qint64 line);
    void CheckDisk();
    void NoteRecent(const QString& path);

    // The session.
    Session Current() const;
    void Restore(const Session& session);
    void RestoreWorksheet();
    QStringList SaveEverything(const Session& session);
    void SavePluginSettings();
    std::string SessionPath() const;
    std::string WorksheetPath() const;

    // The menus.
    QAction* Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                 const std::function<void()>& action);
    void AddForDocument(QMenu* menu, const QString& text, const QKeySequence& keys,
                        const std::function<void(DocumentPage& page)>& action);
    void MakeMenus();
    void MakeFileMenu();
    void MakeRecentMenu(QMenu* parent);
    void MakeEditMenu();
    void MakeSearchMenu();
    void MakeViewMenu();
    void MakeAppearanceMenu(QMenu* parent);
    void MakeCommandsMenu();
    void MakeProjectMenu();
    void MakeWorksheetMenu();
    QMenu* MakeBoardMenu();
    void MakeHelpMenu();
    void MakeToolBar();
    std::vector<NamedShortcut> OwnShortcuts() const;

    // What the menus do.
    QsciScintilla* FocusedText() const;
    bool IsFindBarFocused() const;
    void Edit(const char* slot);
    void Search(const std::function<void()>& search);
    void OpenByDialog();
    void GoToLine(DocumentPage& page);
    void ZoomTo(int zoom);
    void TakeZoom();
    void SwitchToWorksheetAndBack();
    void GrowWorksheet(int pixels);
    void OpenFolderByDialog();
    void MakeTarget(const Document& document);
    void TellOfNoTraceback();
    void ShowBoardFolder();
    void ShowPluginHelp();
    void ShowAbout();

    // The plug-in's commands.
    bool SaveForCommand();
    bool HasSomethingToRun();
    void Perform(const std::string& command);
    void PressControl();
    void OpenPopUp(const QWidget& control);
    void RunLine(const QString& text);
    void FollowLink(const QString& path, int line);
    std::string WorkingFolder() const;

    const PluginModule& plugin_;
    Runtime& runtime_;
    EditorPlaces places_;
    PluginSettings settings_;
    EditorHost host_;
    Shortcuts shortcuts_;
    Session session_;  // What no other part holds is as now, the rest as at the start.
    QTimer diskTimer_;

    // Qt's parents own these.
    Project* project_;
    BoardMonitor* board_;
    UserShell* shell_;
    DocumentTabs* tabs_ = nullptr;
    Worksheet* worksheet_ = nullptr;
    FindBar* findBar_ = nullptr;
    QSplitter* splitter_ = nullptr;
    MessageBar* messages_ = nullptr;
    MessageBar* recovery_ = nullptr;
    MessageBar* slowFile_ = nullptr;
    CommandsMenu* commandsMenu_ = nullptr;
    ControlToolBar* toolBar_ = nullptr;
    EditorStatusBar* status_ = nullptr;
    std::vector<QAction*> documentActions_;  // That need a document in front.
};

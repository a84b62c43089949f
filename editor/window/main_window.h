#pragma once

#include "board_monitor.h"
#include "board_tool.h"
#include "command_monitor.h"
#include "document_tabs.h"
#include "plugin_host.h"
#include "plugin_settings.h"
#include "project.h"
#include "shortcuts.h"
#include "user_folders.h"
#include "worksheet.h"

#include <QMainWindow>

#include <memory>
#include <string>

class BoardActions;
class BoardPanel;
class BoardDocuments;
class BoardPrompt;
class CommandActivity;
class CommandProgress;
class ControlToolBar;
class EditorMenus;
class EditorStatusBar;
class FileActions;
class FindBar;
class FrontSaver;
class HelpWindow;
class InputField;
class MessageArea;
class PinsClient;
class PluginActions;
class QSplitter;
class SessionKeeper;
class TextActions;
class WorksheetActions;

// The locations of the programs and files that the editor uses.
struct EditorPaths {
    UserFolders folders;
    std::string boardProgram;
    std::string boardFolder;  // Contains the virtual board's files.
    BoardMonitor::FindPorts findPorts = [] { return FindBoardPorts(); };
};

// The editor's window, which creates and connects its parts. It must be destroyed after
// Runtime::ShutDown, so that the plug-in no longer writes to it. [ui]
class MainWindow final : public QMainWindow {
    Q_OBJECT

  public:
    // `plugin` and `runtime` must outlive the window.
    MainWindow(const PluginModule& plugin, Runtime& runtime, const EditorPaths& paths);
    ~MainWindow() override;

    // Starts the plug-in and restores the last session. The error is a message for the user.
    std::expected<void, std::string> Start();

    // Opens files; a folder becomes the project. Without files, reopens the documents of the last
    // session. Errors are reported in the window.
    void OpenFiles(const QStringList& files);

    void ShowBoardPanel();

    // Reports an exception that the plug-in threw.
    void ReportPluginError(const std::string& error);

    // Quits without a question, for example when the desktop session ends. Unsaved documents are
    // offered for recovery at the next start.
    void QuitWithoutAsking();

    DocumentTabs& documents() { return *tabs_; }
    Project& project() { return *project_; }
    BoardMonitor& board() { return *board_; }
    Worksheet& worksheet() { return *worksheet_; }

  Q_SIGNALS:
    // Everything has been saved, and the program may exit.
    void Closed();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void MakeCentralWidget(const std::string& recoveryRoot);
    void MakeActions();
    void MakeStatusBar();
    void MakeToolBar();
    void ConnectParts();
    void ShowFront();
    void ConnectFront();
    void ShowPosition();
    void ShowInputFont();
    void OfferLongLine(const QString& text);
    void ShowProject();
    void ShowControls();
    void UpdateControls() { controlsTimer_.start(0); }
    void ShowHelp();
    void CheckDisk();
    void SavePluginSettings();
    QStringList SaveEverything();

    const PluginModule& plugin_;
    Runtime& runtime_;
    UserFolders folders_;
    PluginSettings settings_;
    PluginHost host_;
    BoardTool tool_;
    CommandMonitor monitor_;
    Shortcuts shortcuts_;
    std::unique_ptr<SessionKeeper> session_;
    std::unique_ptr<CommandProgress> progress_;
    QTimer diskTimer_;
    QTimer controlsTimer_;  // Until the plug-in is queried, once for several changes.

    // Owned by their Qt parents.
    Project* project_;
    BoardMonitor* board_;
    PinsClient* pins_;
    QSplitter* splitter_ = nullptr;
    QSplitter* columns_ = nullptr;
    BoardPanel* boardPanel_ = nullptr;
    MessageArea* messages_ = nullptr;
    DocumentTabs* tabs_ = nullptr;
    FindBar* findBar_ = nullptr;
    Worksheet* worksheet_ = nullptr;
    InputField* input_ = nullptr;
    FileActions* files_ = nullptr;
    TextActions* texts_ = nullptr;
    FrontSaver* frontSaver_ = nullptr;
    PluginActions* commands_ = nullptr;
    WorksheetActions* worksheetActions_ = nullptr;
    BoardPrompt* prompt_ = nullptr;
    BoardActions* boardActions_ = nullptr;
    BoardDocuments* boardDocuments_ = nullptr;
    EditorMenus* menus_ = nullptr;
    ControlToolBar* toolBar_ = nullptr;
    EditorStatusBar* status_ = nullptr;
    HelpWindow* help_ = nullptr;  // Null until it is needed.
};

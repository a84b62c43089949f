#pragma once

#include "board_tool.h"
#include "command_monitor.h"

#include <QObject>
#include <QString>

class ControlToolBar;
class EditorStatusBar;
class MessageArea;
class PluginActions;
class QAction;
class Shortcuts;

// Shows what runs on the board: in the status bar, in the tool tips of Run and Stop, and in a
// message when an upload or a deletion is cut short. [ui]
class CommandProgress final : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        EditorStatusBar& status;
        ControlToolBar& toolBar;
        MessageArea& messages;
        PluginActions& commands;
        const Shortcuts& shortcuts;
    };

    // The parts, the monitor and the tool must outlive this object.
    CommandProgress(CommandMonitor& monitor, BoardTool& tool, const Parts& parts);

    // The name of the file that Run would run; empty if there is none.
    void SetRunnable(const QString& name);

    // What is shown beside the running upload, such as "2 of 5".
    void SetUploadNote(const QString& note) { uploadNote_ = note; }

  Q_SIGNALS:
    // A command that needs a board failed.
    void BoardFailed();

  private:
    void Show();
    void ShowToolTips();
    void ReportInterrupted(const BoardCommand& command, const std::vector<std::string>& words);

    CommandMonitor& monitor_;
    BoardTool& tool_;
    Parts parts_;
    QAction* stop_;
    QString runnable_;
    QString uploadNote_;
};

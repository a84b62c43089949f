#pragma once

#include <QObject>

#include <string>

class BoardMonitor;
class DocumentTabs;
class MessageArea;
class Project;
class UserShell;
class Worksheet;

// What the window does with the worksheet's lines: it runs them in the user's shell, and follows
// the links of tracebacks. Used on the user-interface thread.
class WorksheetActions final : public QObject {
    Q_OBJECT

  public:
    // What it refers to must outlive it.
    WorksheetActions(Worksheet& worksheet, DocumentTabs& tabs, const Project& project,
                     const BoardMonitor& board, MessageArea& messages);

    // Stops the command that the worksheet runs.
    void StopShell();
    void GoToNextPlace();
    void GoToPreviousPlace();

  private:
    void RunLine(const QString& text);
    void FollowLink(const QString& path, int line);
    void ReportNoTraceback();
    std::string WorkingFolder() const;

    Worksheet& worksheet_;
    DocumentTabs& tabs_;
    const Project& project_;
    const BoardMonitor& board_;
    MessageArea& messages_;
    UserShell* shell_;  // Owned by Qt's parent.
};

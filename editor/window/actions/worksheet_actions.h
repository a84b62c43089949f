#pragma once

#include <QObject>

#include <string>

class BoardMonitor;
class DocumentTabs;
class MessageArea;
class Project;
class UserShell;
class Worksheet;

// Runs lines of the worksheet in the user's shell, and opens the files that tracebacks refer
// to. [ui]
class WorksheetActions final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one.
    WorksheetActions(Worksheet& worksheet, DocumentTabs& tabs, const Project& project,
                     const BoardMonitor& board, MessageArea& messages);

    // Commands of the worksheet find the programs of this folder first.
    void SetProgramFolder(const std::string& folder);

    // Stops the shell command that is running, if any.
    void StopShell();
    void GoToNextLink();
    void GoToPreviousLink();

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
    UserShell* shell_;  // Owned by its Qt parent.
};

#include "worksheet_actions.h"

#include "board_monitor.h"
#include "document_tabs.h"
#include "link_target.h"
#include "message_area.h"
#include "path_text.h"
#include "project.h"
#include "text_editor.h"
#include "user_shell.h"
#include "worksheet.h"

#include <QDir>

#include <filesystem>

WorksheetActions::WorksheetActions(Worksheet& worksheet, DocumentTabs& tabs, const Project& project,
                                   const BoardMonitor& board, MessageArea& messages)
    : worksheet_(worksheet),
      tabs_(tabs),
      project_(project),
      board_(board),
      messages_(messages),
      shell_(new UserShell(this))
{
    connect(&worksheet_, &Worksheet::LinkChosen, this, &WorksheetActions::FollowLink);
    connect(&worksheet_, &Worksheet::RunRequested, this, &WorksheetActions::RunLine);
    connect(shell_, &UserShell::Output, this,
            [this](const std::string& text) { worksheet_.Append(text); });
}

std::string WorksheetActions::WorkingFolder() const
{
    const auto* const front = tabs_.Front();
    if (project_.folder().isEmpty() && front != nullptr && !front->path().empty()) {
        return std::filesystem::path(front->path()).parent_path().string();
    }
    return TextToPath(project_.folder().isEmpty() ? QDir::homePath() : project_.folder());
}

void WorksheetActions::RunLine(const QString& text)
{
    worksheet_.AppendLines({});
    shell_->Run(text, PathToText(WorkingFolder()));
}

void WorksheetActions::SetProgramFolder(const std::string& folder)
{
    shell_->SetProgramFolder(folder);
}

void WorksheetActions::StopShell()
{
    shell_->Stop();
}

void WorksheetActions::FollowLink(const QString& path, int line)
{
    const auto file = FindLinkedFile(
        TextToPath(path), {WorkingFolder(), TextToPath(project_.folder()), board_.boardFolder()});
    if (file.empty()) {
        messages_.Report(tr("The file %1 does not exist on this computer.").arg(path));
    } else if (tabs_.Open(PathToText(file))) {
        tabs_.FrontPage()->editor().GoToLine(line);
    }
}

void WorksheetActions::GoToNextLink()
{
    if (!worksheet_.GoToNextLink()) {
        ReportNoTraceback();
    }
}

void WorksheetActions::GoToPreviousLink()
{
    if (!worksheet_.GoToPreviousLink()) {
        ReportNoTraceback();
    }
}

void WorksheetActions::ReportNoTraceback()
{
    messages_.Report(tr("The worksheet contains no traceback."));
}

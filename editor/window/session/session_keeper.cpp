#include "session_keeper.h"

#include "appearance.h"
#include "document_tabs.h"
#include "file_actions.h"
#include "file_bytes.h"
#include "message_area.h"
#include "plugin_actions.h"
#include "project.h"
#include "text_actions.h"
#include "user_folders.h"
#include "worksheet.h"

#include <QMainWindow>
#include <QSplitter>

#include <filesystem>

SessionKeeper::SessionKeeper(const UserFolders& folders, Shortcuts& shortcuts,
                             const EditorParts& parts)
    : sessionPath_(folders.config + "/editor.ini"),
      worksheetPath_(folders.state + "/worksheet.txt"),
      shortcuts_(shortcuts),
      parts_(parts)
{
}

void SessionKeeper::Restore()
{
    auto loaded = LoadSession(sessionPath_, shortcuts_);
    last_ = std::move(loaded.session);
    parts_.window.restoreGeometry(last_.geometry);
    parts_.splitter.restoreState(last_.splitter);
    SetAppearance(last_.appearance);
    parts_.project.SetFolder(last_.folder);
    parts_.project.SetTarget(last_.target);
    parts_.files.SetRecent(last_.recent);
    parts_.texts.ZoomTo(last_.zoom);
    parts_.commands.SetSavesFirst(last_.savesBeforeCommands);
    parts_.worksheet.SetWraps(last_.wrapsWorksheet);
    RestoreWorksheet();
    if (!loaded.problem.isEmpty()) {
        parts_.messages.Report(loaded.problem);
    }
}

void SessionKeeper::RestoreWorksheet()
{
    std::error_code ignored;
    if (!std::filesystem::exists(worksheetPath_, ignored)) {
        return;
    }
    const auto bytes = ReadFileBytes(worksheetPath_);
    if (bytes && bytes->isValidUtf8()) {
        return parts_.worksheet.SetContent(QString::fromUtf8(*bytes));
    }
    parts_.messages.Report(
        QString::fromStdString(SetAsideWithReport("The worksheet cannot be read", worksheetPath_)));
}

void SessionKeeper::ReopenDocuments()
{
    parts_.files.Reopen(last_.files, last_.front);
}

Session SessionKeeper::Current() const
{
    const auto* const front = parts_.tabs.Front();
    return {
        .geometry = parts_.window.saveGeometry(),
        .splitter = parts_.splitter.saveState(),
        .files = parts_.tabs.Paths(),
        .front = front != nullptr ? QString::fromStdString(front->path()) : QString(),
        .recent = parts_.files.recent(),
        .folder = parts_.project.folder(),
        .target = parts_.project.target(),
        .zoom = parts_.texts.zoom(),
        .savesBeforeCommands = parts_.commands.savesFirst(),
        .wrapsWorksheet = parts_.worksheet.wraps(),
        .appearance = CurrentAppearance(),
    };
}

QStringList SessionKeeper::Save()
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(worksheetPath_).parent_path(),
                                        ignored);
    QStringList problems;
    for (const auto& saved : {SaveAtomically(worksheetPath_, parts_.worksheet.Content().toUtf8()),
                              SaveSession(sessionPath_, Current(), shortcuts_)}) {
        if (!saved) {
            problems.append(QString::fromStdString(saved.error()));
        }
    }
    return problems;
}

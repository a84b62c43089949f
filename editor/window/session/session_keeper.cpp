#include "session_keeper.h"

#include "appearance.h"
#include "board_actions.h"
#include "board_monitor.h"
#include "board_panel.h"
#include "document_tabs.h"
#include "file_actions.h"
#include "file_save.h"
#include "front_saver.h"
#include "input_field.h"
#include "message_area.h"
#include "path_text.h"
#include "project.h"
#include "scintilla_text.h"
#include "text_actions.h"
#include "text_editor.h"
#include "user_folders.h"
#include "worksheet.h"

#include <QMainWindow>
#include <QSplitter>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

namespace {

constexpr std::chrono::seconds kInterval{1};
constexpr std::chrono::seconds kEndPatience{5};
constexpr int kMaxSecondsUnsaved = 10;

}  // namespace

SessionKeeper::SessionKeeper(const UserFolders& folders, Shortcuts& shortcuts,
                             const EditorParts& parts)
    : sessionPath_(folders.editorSettings()),
      worksheetPath_(folders.state + "/worksheet.txt"),
      shortcuts_(shortcuts),
      parts_(parts),
      lastShortcuts_(shortcuts),
      worker_(1, kEndPatience)
{
    QObject::connect(&timer_, &QTimer::timeout, [this] { SaveChanges(); });
    QObject::connect(&parts_.worksheet, &QsciScintilla::textChanged, &timer_,
                     [this] { isSheetEdited_ = true; });
}

void SessionKeeper::Restore()
{
    auto loaded = LoadSession(sessionPath_, shortcuts_);
    last_ = std::move(loaded.session);
    parts_.window.restoreGeometry(last_.geometry);
    parts_.splitter.restoreState(last_.splitter);
    parts_.columns.restoreState(last_.columns);
    parts_.boardPanel.setVisible(last_.showsBoard);
    SetAppearance(last_.appearance);
    parts_.project.SetFolder(last_.folder);
    parts_.project.SetTarget(last_.target);
    parts_.project.SetFoldersWithFiles(last_.foldersWithFiles);
    RestoreBoard();
    parts_.files.SetRecent(last_.recent);
    parts_.texts.ZoomTo(last_.zoom);
    parts_.frontSaver.SetSavesFirst(last_.savesBeforeCommands);
    parts_.worksheet.SetWraps(last_.wrapsWorksheet);
    parts_.input.SetPromptHistory(last_.promptHistory);
    RestoreWorksheet();
    isSheetEdited_ = false;
    savedLength_ = lastLength_ = Length(parts_.worksheet);
    lastShortcuts_ = shortcuts_;
    timer_.start(kInterval);
    if (!loaded.problem.isEmpty()) {
        parts_.messages.Report(loaded.problem);
    }
}

void SessionKeeper::RestoreBoard()
{
    if (!last_.board.node.empty()) {
        parts_.board.RestoreChoice(last_.board);
    }
    if (last_.usesVirtualBoard) {
        // Show the window first.
        QTimer::singleShot(0, &timer_, [this] { parts_.boardActions.RestoreVirtualBoard(); });
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
    for (qsizetype i = 0; i < std::min(last_.files.size(), last_.lines.size()); ++i) {
        if (const int index = parts_.tabs.IndexOf(last_.files[i]); index >= 0) {
            parts_.tabs.PageAt(index)->editor().setCursorPosition(last_.lines[i] - 1, 0);
        }
    }
}

Session SessionKeeper::Current() const
{
    const auto* const front = parts_.tabs.Front();
    QList<int> lines;
    for (int i = 0; i < parts_.tabs.count(); ++i) {
        auto& page = *parts_.tabs.PageAt(i);
        if (!page.document().path().empty()) {
            lines.append(page.editor().CaretLine());
        }
    }
    return {
        .geometry = parts_.window.saveGeometry(),
        .splitter = parts_.splitter.saveState(),
        .columns = parts_.columns.saveState(),
        .showsBoard = !parts_.boardPanel.isHidden(),
        .files = parts_.tabs.Paths(),
        .lines = lines,
        .front = front != nullptr ? PathToText(front->path()) : QString(),
        .recent = parts_.files.recent(),
        .folder = parts_.project.folder(),
        .target = parts_.project.target(),
        .foldersWithFiles = parts_.project.foldersWithFiles(),
        .board = parts_.board.userChoice().value_or(BoardPort()),
        .usesVirtualBoard = parts_.boardActions.usesVirtualBoard(),
        .zoom = parts_.texts.zoom(),
        .savesBeforeCommands = parts_.frontSaver.savesFirst(),
        .wrapsWorksheet = parts_.worksheet.wraps(),
        .promptHistory = parts_.input.promptHistory(),
        .appearance = CurrentAppearance(),
    };
}

void SessionKeeper::SaveChanges()
{
    auto session = Current();
    auto lines = std::exchange(session.lines, last_.lines);  // A moved caret alone is not saved.
    if (session != last_ || shortcuts_ != lastShortcuts_) {
        session.lines = std::move(lines);
        SaveSettings(session);
    }
    SaveChangedWorksheet();
}

// While output arrives, the worksheet is saved less often.
void SessionKeeper::SaveChangedWorksheet()
{
    const long length = Length(parts_.worksheet);
    const bool isSettled = std::exchange(lastLength_, length) == length;
    if ((isSheetEdited_ || length != savedLength_) &&
        (isSettled || ++secondsUnsaved_ >= kMaxSecondsUnsaved)) {
        SaveWorksheet();
    }
}

void SessionKeeper::SaveWorksheet()
{
    isSheetEdited_ = false;
    secondsUnsaved_ = 0;
    savedLength_ = Length(parts_.worksheet);
    Do(worksheetPath_, [path = worksheetPath_, text = TextOf(parts_.worksheet)] {
        std::error_code ignored;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
        return SaveAtomically(path, text.toUtf8());
    });
}

void SessionKeeper::SaveSettings(const Session& session)
{
    last_ = session;
    lastShortcuts_ = shortcuts_;
    Do(sessionPath_, [path = sessionPath_, session, shortcuts = shortcuts_] {
        return SaveSession(path, session, shortcuts);
    });
}

void SessionKeeper::Do(const std::string& key, Save save)
{
    worker_.Do(key, [this, save = std::move(save)]() -> FileWorker::Result {
        const auto saved = save();
        if (saved) {
            return {};
        }
        return [this, problem = QString::fromStdString(saved.error())] { Fail(problem); };
    });
}

// While the editor runs, each problem is reported only once.
void SessionKeeper::Fail(const QString& problem)
{
    if (problems_.contains(problem)) {
        return;
    }
    problems_.append(problem);
    if (!isExiting_) {
        parts_.messages.Report(problem);
    }
}

QStringList SessionKeeper::SaveAtExit()
{
    timer_.stop();
    problems_.clear();
    isExiting_ = true;
    parts_.worksheet.Content();  // Appends pending output.
    SaveWorksheet();
    SaveSettings(Current());
    const auto end = std::chrono::steady_clock::now() + kEndPatience;
    for (const auto& path : {worksheetPath_, sessionPath_}) {
        const auto rest = end - std::chrono::steady_clock::now();
        if (!worker_.WaitFor(path, std::chrono::duration_cast<FileWorker::Patience>(rest))) {
            Fail(QString::fromStdString(path + " cannot be saved: the disk does not answer"));
        }
    }
    return problems_;
}

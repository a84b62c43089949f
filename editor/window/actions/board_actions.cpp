#include "board_actions.h"

#include "board_files_dialog.h"
#include "board_scripts.h"
#include "board_task.h"
#include "document_tabs.h"
#include "main_program.h"
#include "message_area.h"
#include "path_text.h"
#include "worksheet.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPointer>

#include <utility>

namespace {

QString LeafOf(const std::string& path)
{
    return QString::fromStdString(path.substr(path.rfind('/') + 1));
}

// A folder is copied into the root directory, where its own name is added.
std::vector<std::string> UploadWords(const QString& path)
{
    const std::string local = TextToPath(path);
    if (IsFolder(path)) {
        return {"cp", "-r", local, ":/"};
    }
    return {"cp", local, BoardPathWord(local.substr(local.rfind('/') + 1))};
}

}  // namespace

BoardActions::BoardActions(const Parts& parts)
    : QObject(&parts.window),
      parts_(parts),
      documents_(parts.tabs, parts.tool, parts.board, nullptr)
{
    connect(&parts_.board, &BoardMonitor::ChoiceNeeded, this, &BoardActions::OfferBoards);
    connect(&parts_.board, &BoardMonitor::Changed, this, &BoardActions::ShowBoard);
}

void BoardActions::UseBoard(std::optional<BoardPort> port)
{
    usesVirtualBoard_ = false;
    parts_.board.Choose(std::move(port));
    parts_.messages.WithdrawBoards();
}

void BoardActions::UseVirtualBoard()
{
    usesVirtualBoard_ = true;
    parts_.board.AttachVirtualBoard();
}

void BoardActions::DetachVirtualBoard()
{
    usesVirtualBoard_ = false;
    parts_.board.DetachVirtualBoard();
}

void BoardActions::OfferVirtualBoard()
{
    const auto& board = parts_.board.board();
    if (board.IsAttached() || parts_.board.HasVirtualBoard()) {
        return;
    }
    const QString problem =
        board.kind == BoardMonitor::Kind::Missing
            ? tr("The chosen board, %1, is not attached.").arg(DescribePort(board.port))
            : tr("No board is attached.");
    parts_.messages.OfferVirtualBoard(problem, [this] { UseVirtualBoard(); });
}

void BoardActions::OfferBoards()
{
    parts_.messages.OfferBoards(parts_.board.ports(),
                                [this](const BoardPort& port) { UseBoard(port); });
}

// A board that has been attached answers the offer of the virtual one.
void BoardActions::ShowBoard()
{
    const bool mustChoose = parts_.board.ports().size() > 1 && !parts_.board.choice();
    if (parts_.board.board().IsAttached() &&
        (!mustChoose || parts_.board.board().kind == BoardMonitor::Kind::Virtual)) {
        parts_.messages.WithdrawBoards();
    }
}

// The command has ended already, and another one may have started only if it was stopped.
void BoardActions::ShowOutput(const BoardResult& result)
{
    if (result.isStopped) {
        return parts_.worksheet.Append(result.output);
    }
    parts_.worksheet.BeginCommand();
    parts_.worksheet.Append(result.output);
    parts_.worksheet.EndCommand();
}

void BoardActions::Restart()
{
    RunBoardTask(parts_.tool, RestartWords(), *this, [this](const BoardResult& result) {
        ShowOutput(result);
        if (result.IsSuccess()) {
            parts_.board.SetFirmware(ParseFirmware(result.output));
        }
    });
}

void BoardActions::RunMain()
{
    parts_.tool.Run(RunMainCommand());
}

void BoardActions::InstallPackage()
{
    const QString name =
        QInputDialog::getText(&parts_.window, tr("Install Package"),
                              tr("The name of a package of micropython-lib, or its address:"))
            .trimmed();
    if (!name.isEmpty()) {
        parts_.tool.Run({"mip", "install", name.toStdString()});
    }
}

void BoardActions::UploadFiles()
{
    Upload(QFileDialog::getOpenFileNames(&parts_.window, tr("Upload Files")));
}

void BoardActions::UploadFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(&parts_.window, tr("Upload Folder"));
    if (!folder.isEmpty()) {
        Upload({folder});
    }
}

void BoardActions::Upload(const QStringList& paths)
{
    if (!paths.isEmpty()) {
        UploadNext(paths, 0);
    }
}

// A command of the user ends the sequence, as does a file that cannot be uploaded.
void BoardActions::UploadNext(const QStringList& paths, qsizetype next)
{
    const bool isLast = next + 1 == paths.size();
    Q_EMIT UploadNoteChanged(paths.size() == 1 ? QString()
                                               : tr("%1 of %2").arg(next + 1).arg(paths.size()));
    RunBoardTask(
        parts_.tool, UploadWords(paths[next]), *this,
        [this, paths, next, isLast](const BoardResult& result) {
            ShowOutput(result);
            if (result.IsSuccess() && !isLast) {
                return UploadNext(paths, next + 1);
            }
            Q_EMIT UploadNoteChanged({});
            if (!result.IsSuccess() && !isLast) {
                parts_.messages.Report(tr("Not uploaded: %1").arg(paths.mid(next + 1).join(", ")));
            }
        });
}

void BoardActions::ChooseEntry(const QString& title, const QString& accept, bool withDirectories,
                               const OnChosen& onChosen)
{
    auto* const dialog = new BoardFilesDialog(title, accept, &parts_.window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &BoardFilesDialog::Chosen, this, onChosen);
    dialog->open();
    RunBoardTask(parts_.tool, ListFilesWords(), *dialog,
                 [this, dialog, withDirectories](const BoardResult& result) {
                     if (!result.IsSuccess()) {
                         dialog->reject();
                         return ShowOutput(result);
                     }
                     parts_.board.SetFirmware(ParseFirmware(result.output));
                     auto entries = ParseEntries(result.output);
                     if (!withDirectories) {
                         std::erase_if(entries, &BoardEntry::isDirectory);
                     }
                     dialog->SetEntries(entries);
                 });
}

void BoardActions::OpenFile()
{
    ChooseEntry(tr("Open File on Board"), tr("&Open"), false,
                [this](const BoardEntry& entry) { documents_.Open(entry.path); });
}

void BoardActions::Download()
{
    ChooseEntry(tr("Download"), tr("&Download…"), true,
                [this](const BoardEntry& entry) { DownloadTo(entry); });
}

// The tool overwrites files without asking.
void BoardActions::DownloadTo(const BoardEntry& entry)
{
    const QString folder = QFileDialog::getExistingDirectory(
        &parts_.window, tr("Download %1 into a Folder").arg(LeafOf(entry.path)));
    if (folder.isEmpty()) {
        return;
    }
    const QString path = folder + "/" + LeafOf(entry.path);
    if (QFileInfo::exists(path) &&
        QMessageBox::question(&parts_.window, tr("Download"),
                              tr("%1 exists already. Overwrite it?").arg(path)) !=
            QMessageBox::Yes) {
        return;
    }
    const std::string word = BoardPathWord(entry.path);
    if (entry.isDirectory) {
        parts_.tool.Run({"cp", "-r", word, TextToPath(folder)});
    } else {
        parts_.tool.Run({"cp", word, TextToPath(path)});
    }
}

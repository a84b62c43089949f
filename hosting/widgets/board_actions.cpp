#include "board_actions.h"

#include "board_files_dialog.h"
#include "board_scripts.h"
#include "board_task.h"
#include "host_messages.h"
#include "main_program.h"
#include "output_view.h"
#include "path_text.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPointer>
#include <QUrl>

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

BoardActions::BoardActions(Parts parts, QObject* parent) : QObject(parent), parts_(std::move(parts))
{
}

void BoardActions::UseBoard(std::optional<BoardPort> port)
{
    usesVirtualBoard_ = false;
    parts_.board.Choose(std::move(port));
    parts_.messages.Withdraw(HostMessages::Topic::Board);
}

void BoardActions::UseVirtualBoard()
{
    usesVirtualBoard_ = true;
    parts_.board.AttachVirtualBoard();
}

void BoardActions::RestoreVirtualBoard()
{
    usesVirtualBoard_ = true;
    if (VirtualBoard::NamedLink().empty() && !parts_.board.isChosenByEnvironment()) {
        parts_.board.AttachVirtualBoard();
    }
}

void BoardActions::DetachVirtualBoard()
{
    usesVirtualBoard_ = false;
    parts_.board.DetachVirtualBoard();
}

void BoardActions::OpenBoardFolder()
{
    const QString folder = PathToText(parts_.board.boardFolder());
    if (!IsFolder(folder) || !QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
        parts_.messages.Report(tr("The virtual board's files are in %1.").arg(folder));
    }
}

// The command has ended already, and another one may have started only if it was stopped.
void BoardActions::ShowOutput(const BoardResult& result)
{
    if (result.isStopped) {
        return parts_.output.Append(result.output);
    }
    parts_.output.BeginCommand();
    parts_.output.Append(result.output);
    parts_.output.EndCommand();
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
        QInputDialog::getText(parts_.window(), tr("Install Package"),
                              tr("The name of a package of micropython-lib, or its address:"))
            .trimmed();
    if (!name.isEmpty()) {
        parts_.tool.Run({"mip", "install", name.toStdString()});
    }
}

void BoardActions::UploadFiles()
{
    Upload(QFileDialog::getOpenFileNames(parts_.window(), tr("Upload Files")));
}

void BoardActions::UploadFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(parts_.window(), tr("Upload Folder"));
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
void BoardActions::UploadNext(const QStringList& paths, int next)
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
    auto* const dialog = new BoardFilesDialog(title, accept, parts_.window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &BoardFilesDialog::Chosen, this, onChosen);
    dialog->open();
    RunBoardTask(parts_.tool, ListFilesWords(), *dialog,
                 [this, self = QPointer(this), dialog, withDirectories](const BoardResult& result) {
                     if (!self) {  // The window, and with it the dialog, may exist longer.
                         return dialog->reject();
                     }
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

void BoardActions::OpenFile(const std::function<void(const std::string& path)>& open)
{
    ChooseEntry(tr("Open File on Board"), tr("&Open"), false,
                [open](const BoardEntry& entry) { open(entry.path); });
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
        parts_.window(), tr("Download %1 into a Folder").arg(LeafOf(entry.path)));
    if (folder.isEmpty()) {
        return;
    }
    const QString path = folder + "/" + LeafOf(entry.path);
    if (QFileInfo::exists(path) &&
        QMessageBox::question(parts_.window(), tr("Download"),
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

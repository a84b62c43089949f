// What the editor's window does with the plug-in and the worksheet's lines.

#include "link_target.h"
#include "main_window.h"
#include "text_editor.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace {

// The menu's own words, by which its items are known.
constexpr const char* kOpenDeviceWindow = "Open Device window";

// These need no file, so that there is nothing to save first: to stop must never wait for an
// answer.
constexpr std::array<std::string_view, 2> kWithoutFile{"QuilpStop", "QuilpList"};

// What the labels of the menu's items begin with that take the front document or the target.
constexpr std::array<std::string_view, 2> kFileItems{"Run", "Upload"};

bool ActsOnFile(std::string_view label)
{
    return std::ranges::any_of(kFileItems, [&](auto word) { return label.starts_with(word); });
}

bool NeedsFile(std::string_view command)
{
    return std::ranges::find(kWithoutFile, command) == kWithoutFile.end();
}

}  // namespace

// The plug-in takes files as they are on the disk. False when the user has changed their mind.
bool MainWindow::SaveForCommand()
{
    const auto* const front = tabs_->Front();
    if (front == nullptr || !session_.savesBeforeCommands) {
        return true;
    }
    if (front->path().empty()) {
        // A new text can run once it has a name; until then the target does.
        return front->IsPristine() || host_.HasRunnable() || tabs_->SaveFront();
    }
    return !front->IsModified() || tabs_->SaveFront();
}

bool MainWindow::HasSomethingToRun()
{
    if (!host_.HasRunnable()) {
        Tell(tr("There is no Python document in front, and no Python target, to act on."));
        return false;
    }
    return true;
}

void MainWindow::Perform(const std::string& command)
{
    if (NeedsFile(command) && !(SaveForCommand() && HasSomethingToRun())) {
        return;
    }
    if (!host_.Perform(command)) {
        Tell(
            tr("The plug-in did not perform the command %1.").arg(QString::fromStdString(command)));
    }
}

void MainWindow::PressControl()
{
    if (SaveForCommand() && HasSomethingToRun()) {
        host_.PressControl();
    }
}

// In the place of the control that was pressed.
void MainWindow::OpenPopUp(const QWidget& control)
{
    const QPointF corner = control.mapTo(this, QPoint(0, 0));
    host_.OpenPopUp(
        {corner.x(), corner.y(), corner.x() + control.width(), corner.y() + control.height()},
        [this](const std::string& label) { return !ActsOnFile(label) || SaveForCommand(); });
}

void MainWindow::OpenDeviceWindow()
{
    if (!host_.PerformFromMenu(kOpenDeviceWindow)) {
        Tell(tr("The plug-in has no such window."));
    }
}

std::string MainWindow::WorkingFolder() const
{
    const auto* const front = tabs_->Front();
    if (project_->folder().isEmpty() && front != nullptr && !front->path().empty()) {
        return std::filesystem::path(front->path()).parent_path().string();
    }
    return (project_->folder().isEmpty() ? QDir::homePath() : project_->folder()).toStdString();
}

void MainWindow::RunLine(const QString& text)
{
    if (worksheet_->lineLength(worksheet_->lines() - 1) > 0) {
        worksheet_->Append("\n");
    }
    shell_->Run(text, QString::fromStdString(WorkingFolder()));
}

void MainWindow::FollowLink(const QString& path, int line)
{
    const auto file =
        FindLinkedFile(path.toStdString(),
                       {WorkingFolder(), project_->folder().toStdString(), board_->boardFolder()});
    if (file.empty()) {
        Tell(tr("There is no file %1 here.").arg(path));
    } else if (tabs_->Open(QString::fromStdString(file))) {
        tabs_->FrontPage()->editor().GoToLine(line);
    }
}

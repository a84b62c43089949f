// What the editor's window does with the plug-in, the board, the project and the worksheet's lines.

#include "link_target.h"
#include "main_window.h"
#include "protect.h"
#include "run_control.h"
#include "text_editor.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QToolBar>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace {

// The menu's own words, by which it is chosen.
constexpr const char* kOpenDeviceWindow = "Open Device window";

// These need no file, so that there is nothing to save first: to stop must never wait for an
// answer.
constexpr std::array<std::string_view, 2> kWithoutFile{"QuilpStop", "QuilpList"};

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
    // Also after a save that failed: one may want to stop.
    if (const auto* const front = tabs_->Front(); front != nullptr && !front->path().empty()) {
        SaveForCommand();
    }
    const QPointF corner = control.mapTo(this, QPoint(0, 0));
    host_.OpenPopUp(
        {corner.x(), corner.y(), corner.x() + control.width(), corner.y() + control.height()});
}

void MainWindow::OpenPopUpFromMenu()
{
    const auto* const control =
        controlActions_.empty() ? toolBar_ : toolBar_->widgetForAction(controlActions_.front());
    OpenPopUp(*control);
}

// The plug-in offers its controls for the front document as it is now.
void MainWindow::ShowControls()
{
    const auto offered = host_.OfferedControls();
    if (offered == offeredControls_) {
        return;
    }
    offeredControls_ = offered;
    for (auto* const action : controlActions_) {
        toolBar_->removeAction(action);
        action->deleteLater();
    }
    controlActions_.clear();
    for (const auto& name : offered) {
        auto* const control = new RunControl(QString::fromStdString(name), toolBar_);
        connect(control, &RunControl::clicked, this, &MainWindow::PressControl);
        // Queued: the menu runs an event loop, and the press must be over by then.
        connect(
            control, &RunControl::MenuRequested, control, [this, control] { OpenPopUp(*control); },
            Qt::QueuedConnection);
        controlActions_.push_back(toolBar_->insertWidget(controlsEnd_, control));
    }
}

void MainWindow::OpenDeviceWindow()
{
    if (!host_.PerformFromMenu(kOpenDeviceWindow)) {
        Tell(tr("The plug-in has no such window."));
    }
}

void MainWindow::ShowPluginHelp()
{
    QString text;
    Protect([&] { text = QString::fromStdString(plugin_.Help()); });
    QMessageBox box(QMessageBox::Information, tr("Plug-in Help"), text, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void MainWindow::AttachVirtualBoard()
{
    if (const auto attached = board_->AttachVirtualBoard(); !attached) {
        Tell(QString::fromStdString(attached.error()));
    }
}

void MainWindow::SetFolder(const QString& folder)
{
    session_.folder = QFileInfo(folder).isDir() ? QFileInfo(folder).absoluteFilePath() : QString();
    FindProjectTarget();
}

// It comes and goes with the file.
void MainWindow::FindProjectTarget()
{
    const QFileInfo main(session_.folder + "/main.py");
    const bool isThere = !session_.folder.isEmpty() && main.isFile();
    const QString found = isThere ? main.absoluteFilePath() : QString();
    if (std::exchange(projectTarget_, found) != found) {
        host_.SetProjectTarget(found.toStdString());
        ShowControls();
    }
    ShowTarget();
}

void MainWindow::SetTarget(const QString& path)
{
    session_.target = QFileInfo(path).isFile() ? QFileInfo(path).absoluteFilePath() : QString();
    host_.SetTarget(session_.target.toStdString());
    ShowTarget();
    ShowControls();
}

std::string MainWindow::WorkingFolder() const
{
    const auto* const front = tabs_->Front();
    if (session_.folder.isEmpty() && front != nullptr && !front->path().empty()) {
        return std::filesystem::path(front->path()).parent_path().string();
    }
    return (session_.folder.isEmpty() ? QDir::homePath() : session_.folder).toStdString();
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
                       {WorkingFolder(), session_.folder.toStdString(), board_->boardFolder()});
    if (file.empty()) {
        Tell(tr("There is no file %1 here.").arg(path));
    } else if (tabs_->Open(QString::fromStdString(file))) {
        tabs_->FrontPage()->editor().GoToLine(line);
    }
}

#include "plugin_actions.h"

#include "board_documents.h"
#include "document_tabs.h"
#include "message_area.h"
#include "plugin_host.h"

PluginActions::PluginActions(PluginHost& host, DocumentTabs& tabs, MessageArea& messages,
                             QWidget* window)
    : QObject(window), host_(host), tabs_(tabs), messages_(messages), window_(window)
{
}

// The plug-in reads the file from disk. Returns false if the user cancelled.
bool PluginActions::SaveFront()
{
    const auto* const front = tabs_.Front();
    if (front == nullptr) {
        return true;
    }
    if (front->boardFile() != nullptr) {
        return !front->IsSaving() && WriteCopy();  // The command would stop the save.
    }
    if (front->path().empty()) {
        // An empty one is no program: the target runs, if there is one.
        return front->IsPristine() || SaveUnnamed();
    }
    return !savesFirst_ || !front->IsModified() || tabs_.saver().SaveFront();
}

// The text of a file of the board runs although the board does not have it yet.
bool PluginActions::WriteCopy()
{
    const auto written = BoardDocuments::WriteCopy(*tabs_.Front());
    if (!written) {
        messages_.Report(QString::fromStdString(written.error()));
    }
    return written.has_value();
}

// A program without a file is saved in any case, because it could not run otherwise.
bool PluginActions::SaveUnnamed()
{
    if (!tabs_.saver().SaveFront()) {
        return false;
    }
    const bool isPython = tabs_.Front()->IsPython();
    if (!isPython) {
        messages_.Report(tr("%1 cannot be run: the names of Python files end in .py.")
                             .arg(tabs_.Front()->Name()));
    }
    return isPython;
}

bool PluginActions::PrepareFile()
{
    if (!SaveFront()) {
        if (const auto* const front = tabs_.Front(); front->IsSaving()) {
            messages_.Report(tr("%1 is still being saved. Repeat the command when that is done.")
                                 .arg(front->Name()));
        }
        return false;
    }
    if (!host_.HasRunnable()) {
        messages_.Report(tr("Nothing to run: open a Python document or set a target."));
        return false;
    }
    return true;
}

void PluginActions::Perform(const std::string& command)
{
    if (NeedsFile(FindCommandByName(command)) && !PrepareFile()) {
        return;
    }
    if (!host_.Perform(command)) {
        messages_.Report(
            tr("The plug-in did not perform the command %1.").arg(QString::fromStdString(command)));
    }
}

void PluginActions::PressControl()
{
    if (PrepareFile()) {
        host_.PressControl();
    }
}

void PluginActions::OpenPopUp(const QWidget& control)
{
    const QPointF corner = control.mapTo(window_, QPoint(0, 0));
    host_.OpenPopUp(
        {corner.x(), corner.y(), corner.x() + control.width(), corner.y() + control.height()},
        [this](const std::string& label) {
            return !NeedsFile(FindCommandByLabel(label)) || SaveFront();
        });
}

void PluginActions::ShowStatus()
{
    if (!host_.Perform(*FindCommandByBatchName("status"))) {
        messages_.Report(tr("The plug-in cannot show the status."));
    }
}

void PluginActions::OpenDeviceWindow()
{
    if (!host_.PerformFromMenu(std::string(kOpenDeviceWindow))) {
        messages_.Report(tr("The plug-in has no Device window."));
    }
}

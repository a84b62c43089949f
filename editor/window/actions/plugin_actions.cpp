#include "plugin_actions.h"

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
    if (front == nullptr || !savesFirst_) {
        return true;
    }
    if (front->path().empty()) {
        // A document without a file cannot run, so the target runs instead, if there is one.
        return front->IsPristine() || host_.HasRunnable() || tabs_.SaveFront();
    }
    return !front->IsModified() || tabs_.SaveFront();
}

bool PluginActions::PrepareFile()
{
    if (!SaveFront()) {
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

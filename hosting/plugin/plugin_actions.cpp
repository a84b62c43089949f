#include "plugin_actions.h"

#include "host_messages.h"
#include "plugin_host.h"

#include <QWidget>

#include <utility>

PluginActions::PluginActions(PluginHost& host, HostMessages& messages,
                             std::function<bool()> saveFront, QObject* parent)
    : QObject(parent), host_(host), messages_(messages), saveFront_(std::move(saveFront))
{
}

bool PluginActions::PrepareFile()
{
    if (!saveFront_()) {
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
    Q_EMIT OutputExpected();
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
    const QPointF corner = control.mapTo(control.window(), QPoint(0, 0));
    host_.OpenPopUp(
        {corner.x(), corner.y(), corner.x() + control.width(), corner.y() + control.height()},
        [this](const std::string& label) { return MayPerformFromMenu(label); });
}

bool PluginActions::MayPerformFromMenu(const std::string& label)
{
    const auto* const command = FindCommandByLabel(label);
    if (NeedsFile(command) && !saveFront_()) {
        return false;
    }
    if (command == nullptr || command->menuLabel != kOpenDeviceWindow) {
        Q_EMIT OutputExpected();
    }
    return true;
}

void PluginActions::ShowStatus()
{
    Q_EMIT OutputExpected();
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

#include "command_progress.h"

#include "command_monitor.h"
#include "control_tool_bar.h"
#include "plugin_actions.h"
#include "shortcuts.h"

#include <QAction>

namespace {

QString WithKeys(const QString& text, const QKeySequence& keys)
{
    return keys.isEmpty() ? text : text + " (" + keys.toString(QKeySequence::NativeText) + ")";
}

}  // namespace

CommandProgress::CommandProgress(const CommandMonitor& monitor, const Parts& parts)
    : monitor_(monitor), parts_(parts)
{
    stop_ = parts_.toolBar.AddStop([this] { parts_.commands.Perform("QuilpStop"); });
    connect(&monitor_, &CommandMonitor::Changed, this, &CommandProgress::Show);
    Show();
}

void CommandProgress::SetRunnable(const QString& name)
{
    runnable_ = name;
    Show();
}

void CommandProgress::Show()
{
    const auto run = runnable_.isEmpty() ? tr("Run") : tr("Run %1").arg(runnable_);
    parts_.toolBar.DescribeControls(WithKeys(run, parts_.shortcuts.Shortcut("QuilpRun")));
    const QString subject = monitor_.IsRunning() ? monitor_.command().subject : QString();
    const auto stop = subject.isEmpty() ? tr("Stop") : tr("Stop %1").arg(subject);
    stop_->setToolTip(WithKeys(stop, parts_.shortcuts.Shortcut("QuilpStop")));
    stop_->setEnabled(monitor_.IsRunning());
}

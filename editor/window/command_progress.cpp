#include "command_progress.h"

#include "control_tool_bar.h"
#include "editor_status_bar.h"
#include "message_area.h"
#include "plugin_actions.h"
#include "shortcuts.h"

#include <QAction>

namespace {

QString WithKeys(const QString& text, const QKeySequence& keys)
{
    return keys.isEmpty() ? text : text + " (" + keys.toString(QKeySequence::NativeText) + ")";
}

}  // namespace

CommandProgress::CommandProgress(CommandMonitor& monitor, BoardTool& tool, const Parts& parts)
    : monitor_(monitor), tool_(tool), parts_(parts)
{
    stop_ = parts_.toolBar.AddStop([this] { parts_.commands.Perform("QuilpStop"); });
    connect(&monitor_, &CommandMonitor::Changed, this, &CommandProgress::Show);
    connect(&monitor_, &CommandMonitor::Interrupted, this, &CommandProgress::ReportInterrupted);
    connect(&monitor_, &CommandMonitor::Ended, this,
            [this](const BoardCommand&, Runtime::CommandEnd end) {
                if (!end.isStopped && end.status != 0) {
                    Q_EMIT BoardFailed();
                }
            });
    Show();
}

void CommandProgress::SetRunnable(const QString& name)
{
    runnable_ = name;
    ShowToolTips();
}

void CommandProgress::Show()
{
    const bool isUpload =
        monitor_.IsRunning() && monitor_.command().kind == BoardCommand::Kind::Upload;
    const bool hasNote = isUpload && !uploadNote_.isEmpty();
    parts_.status.ShowActivity(hasNote ? monitor_.Text() + " – " + uploadNote_ : monitor_.Text(),
                               monitor_.IsRunning());
    stop_->setEnabled(monitor_.IsRunning());
    if (isUpload) {
        parts_.messages.WithdrawUpload();
    }
    ShowToolTips();
}

void CommandProgress::ShowToolTips()
{
    const auto run = runnable_.isEmpty() ? tr("Run") : tr("Run %1").arg(runnable_);
    parts_.toolBar.DescribeControls(WithKeys(run, parts_.shortcuts.Shortcut("QuilpRun")));
    const QString subject = monitor_.IsRunning() ? monitor_.command().subject : QString();
    const auto stop = subject.isEmpty() ? tr("Stop") : tr("Stop %1").arg(subject);
    stop_->setToolTip(WithKeys(stop, parts_.shortcuts.Shortcut("QuilpStop")));
}

void CommandProgress::ReportInterrupted(const BoardCommand& command,
                                        const std::vector<std::string>& words)
{
    if (command.kind == BoardCommand::Kind::Upload) {
        const std::vector<std::string> again(words.begin() + 1, words.end());  // Without the tool.
        parts_.messages.OfferUpload(DescribeStopped(command), [this, again] { tool_.Run(again); });
    } else {
        parts_.messages.Report(DescribeStopped(command));
    }
}

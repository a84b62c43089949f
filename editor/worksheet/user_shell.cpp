#include "user_shell.h"

#include "runtime.h"
#include "shell_job.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace {

std::string ShellProgram()
{
    const auto shell = qgetenv("SHELL");
    return shell.isEmpty() ? "/bin/sh" : shell.toStdString();
}

ShellJob::Program ProgramFor(const QString& command, const QString& folder)
{
    ShellJob::Program program{
        .words =
            std::vector{ShellProgram(), std::string("-c"), command.toLocal8Bit().toStdString()},
        .environment = CurrentEnvironment(),
        .folder = QFile::encodeName(folder).toStdString(),
        .group = JobGroup::UserShell,
        .splitsLines = false,
        .forwardsAfterStop = true,
    };
    if (!QFileInfo(folder).isDir()) {
        program.words = std::unexpected("There is no folder " + folder.toStdString() + ".");
    }
    return program;
}

}  // namespace

UserShell::UserShell(QObject* parent) : QObject(parent) {}

UserShell::~UserShell()
{
    Stop();
}

void UserShell::Run(const QString& command, const QString& folder)
{
    Stop();
    auto& runtime = Runtime::Current();
    const QPointer self(this);
    auto forward = [self, &queue = runtime.queue()](std::string&& bytes) {
        queue.Post([self, bytes = std::move(bytes)] {
            if (self) {
                Q_EMIT self->Output(bytes);
            }
        });
    };
    job_ = std::make_shared<ShellJob>(
        ProgramFor(command, folder), std::make_shared<const ShellJob::OnOutput>(std::move(forward)),
        runtime.queue());
    job_->SetFinishedHandler([self](JobResult result) {
        if (self) {
            Q_EMIT self->Finished(result.status);
        }
    });
    runtime.Start(job_);
}

void UserShell::Stop()
{
    if (job_) {
        job_->Stop();
    }
}

#include "user_shell.h"

#include "path_text.h"
#include "runtime.h"
#include "shell_job.h"

#include <QPointer>

#include <chrono>
#include <semaphore>
#include <string_view>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kClosedCheckInterval{20};

std::string ShellProgram()
{
    const auto shell = qgetenv("SHELL");
    return shell.isEmpty() ? "/bin/sh" : shell.toStdString();
}

std::vector<std::string> EnvironmentWith(const std::string& programFolder)
{
    auto environment = CurrentEnvironment();
    constexpr std::string_view kPath = "PATH=";
    for (auto& word : environment) {
        if (word.starts_with(kPath) && !programFolder.empty()) {
            word.insert(kPath.size(), programFolder + ":");
        }
    }
    return environment;
}

ShellJob::Program ProgramFor(const QString& command, const QString& folder,
                             const std::string& programFolder)
{
    ShellJob::Program program{
        .words =
            std::vector{ShellProgram(), std::string("-c"), command.toLocal8Bit().toStdString()},
        .environment = EnvironmentWith(programFolder),
        .folder = TextToPath(folder),
        .group = JobGroup::UserShell,
        .splitsLines = false,
        .forwardsAfterStop = true,
    };
    if (!IsFolder(folder)) {
        program.words = std::unexpected("The folder " + TextToPath(folder) + " does not exist.");
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
    // One piece at a time: the queue's limit counts tasks, and these are large. A flood must
    // neither delay the board's commands nor be shown long after it was stopped.
    auto isProcessed = std::make_shared<std::binary_semaphore>(1);
    auto forward = [self, isProcessed, &queue = runtime.queue()](std::string&& bytes) {
        while (!isProcessed->try_acquire_for(kClosedCheckInterval) && !queue.IsClosed()) {
        }
        queue.Post([self, isProcessed, bytes = std::move(bytes)] {
            if (self) {
                Q_EMIT self->Output(bytes);
            }
            isProcessed->release();
        });
    };
    job_ = std::make_shared<ShellJob>(
        ProgramFor(command, folder, programFolder_),
        std::make_shared<const ShellJob::OnOutput>(std::move(forward)), runtime.queue());
    job_->SetFinishedHandler([self](int status) {
        if (self) {
            Q_EMIT self->Finished(status);
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

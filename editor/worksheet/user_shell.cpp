#include "user_shell.h"

#include "path_text.h"
#include "runtime.h"
#include "shell_job.h"

#include <QPointer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kClosedCheckInterval{20};
constexpr std::size_t kMaxBuffered = UserShell::kMaxOutput - 65'536;

// Output between the job's thread and the user-interface thread. [any]
class OutputBuffer {
  public:
    // Waits while it is full, unless the queue is closed. Returns whether it was empty.
    bool Add(std::string_view bytes, const UiQueue& queue)
    {
        std::unique_lock lock(mutex_);
        const auto hasRoom = [&] { return bytes_.size() < kMaxBuffered; };
        while (!room_.wait_for(lock, kClosedCheckInterval, hasRoom) && !queue.IsClosed()) {
        }
        const bool wasEmpty = bytes_.empty();
        bytes_ += bytes;
        return wasEmpty;
    }

    std::string Take()
    {
        const std::lock_guard lock(mutex_);
        room_.notify_one();
        return std::exchange(bytes_, {});
    }

  private:
    std::mutex mutex_;
    std::condition_variable room_;
    std::string bytes_;
};

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
    // One task at a time: a flood must not delay the board's commands.
    auto buffer = std::make_shared<OutputBuffer>();
    auto forward = [self, buffer, &queue = runtime.queue()](std::string&& bytes) {
        if (buffer->Add(bytes, queue)) {
            queue.Post([self, buffer] {
                const std::string output = buffer->Take();
                if (self) {
                    Q_EMIT self->Output(output);
                }
            });
        }
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

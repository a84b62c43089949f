#include "shell_job.h"

#include "command_line.h"
#include "descriptors.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <tuple>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kQuiet{30};
constexpr std::chrono::milliseconds kPipeGrace{100};
constexpr std::chrono::milliseconds kTerminationGrace{500};
// How often to look for what no descriptor tells of.
constexpr std::chrono::milliseconds kLookInterval{20};
constexpr std::size_t kMostDrained = 1 << 20;

// What Python programs, the tool among them, need to print at once and in UTF-8.
std::vector<std::string> ToolEnvironment()
{
    std::vector<std::string> words = CurrentEnvironment();
    std::erase_if(words, [](const std::string& word) {
        return word.starts_with("PYTHONUNBUFFERED=") || word.starts_with("PYTHONUTF8=");
    });
    words.emplace_back("PYTHONUNBUFFERED=1");
    words.emplace_back("PYTHONUTF8=1");
    return words;
}

// Signals are for the program's main thread.
void BlockSignalsInThisThread()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

void StoppedJobs::Add()
{
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_all();  // The job that was stopped may be waiting here itself.
}

void StoppedJobs::Remove()
{
    const std::lock_guard lock(mutex_);
    --count_;
    changed_.notify_all();
}

bool StoppedJobs::WaitForNone(const std::atomic<bool>& giveUp)
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return giveUp || count_ == 0; });
    return !giveUp;
}

ShellJob::ShellJob(std::string commandLine, std::shared_ptr<const OnOutput> onOutput,
                   unique_function<void()> done, UiQueue& queue, StoppedJobs& stoppedJobs)
    : commandLine_(std::move(commandLine)),
      environment_(ToolEnvironment()),
      onOutput_(std::move(onOutput)),
      done_(std::move(done)),
      queue_(queue),
      stoppedJobs_(stoppedJobs)
{
}

void ShellJob::Start(const std::function<void()>& onEnd)
{
    std::ignore = MakePipe(wake_);  // Without one a stop is looked for from time to time.
    try {
        thread_ = std::thread([this, onEnd] {
            BlockSignalsInThisThread();
            Work();
            onEnd();
        });
    } catch (const std::system_error& error) {
        (*onOutput_)(std::string("No thread can be started: ") + error.what() + "\n");
        ended_ = true;
        onEnd();
    }
}

void ShellJob::Stop()
{
    const auto dropped = std::exchange(done_, {});
    const std::lock_guard lock(endMutex_);
    if (ended_ || stopped_.exchange(true)) {
        return;
    }
    stoppedJobs_.Add();
    std::ignore = WriteFully(wake_[1], "s");
    queue_.WakeWaiting();
}

void ShellJob::Join()
{
    if (thread_.joinable()) {
        thread_.join();
    }
    for (int& fd : wake_) {
        CloseDescriptor(std::exchange(fd, -1));
    }
}

void ShellJob::Complete()
{
    if (auto done = std::exchange(done_, {})) {
        done();
    }
}

void ShellJob::Work()
{
    if (stoppedJobs_.WaitForNone(stopped_)) {
        RunProgram();
    }
    const std::lock_guard lock(endMutex_);
    ended_ = true;
    if (stopped_) {
        stoppedJobs_.Remove();
    }
}

void ShellJob::RunProgram()
{
    const auto words = CutCommandLine(commandLine_);
    if (!words) {
        return HandOn("The command line cannot be read: " + words.error() + "\n");
    }
    auto child = ChildProcess::Start(*words, environment_);
    if (!child) {
        return HandOn(child.error() + "\n");
    }
    Follow(*child);
}

void ShellJob::Follow(ChildProcess& child)
{
    while (!IsFinished()) {
        if (stopped_ && !killAt_) {
            child.SignalGroup(SIGTERM);
            killAt_ = Clock::now() + kTerminationGrace;
        }
        Wait(child);
        CheckDeadlines(child);
    }
    DrainAfterExit(child);
    HandOn(cutter_.TakeRest());
    if (stopped_) {
        // Also whoever of the group has let go of the pipe and lives on.
        child.SignalGroup(SIGKILL);
    }
    child.Reap();
}

bool ShellJob::IsFinished() const
{
    if (!exited_) {
        return false;
    }
    return !outputOpen_ || killed_ || (!killAt_ && Clock::now() >= *giveUpPipeAt_);
}

void ShellJob::Wait(const ChildProcess& child)
{
    auto until = Clock::now() + std::chrono::hours(1);
    for (const auto& deadline :
         {quietAt_, killAt_ ? std::nullopt : giveUpPipeAt_, killed_ ? std::nullopt : killAt_}) {
        until = std::min(until, deadline.value_or(until));
    }
    if (child.exitFd() < 0 || wake_[0] < 0) {
        until = std::min(until, Clock::now() + kLookInterval);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    // A descriptor of -1 is passed over.
    std::array<pollfd, 3> fds{{{outputOpen_ ? child.outputFd() : -1, POLLIN, 0},
                               {exited_ ? -1 : child.exitFd(), POLLIN, 0},
                               {killAt_ ? -1 : wake_[0], POLLIN, 0}}};
    poll(fds.data(), fds.size(), std::max(0, static_cast<int>(left.count())));
    if (fds[0].revents != 0) {
        ReadOutput(child);
    }
    if (!exited_ && (fds[1].revents != 0 || child.exitFd() < 0) && child.HasExited()) {
        exited_ = true;
        giveUpPipeAt_ = Clock::now() + kPipeGrace;
    }
}

void ShellJob::ReadOutput(const ChildProcess& child)
{
    const std::string bytes = ReadAvailable(child.outputFd());
    if (bytes.empty()) {
        outputOpen_ = false;
        return;
    }
    HandOnLines(bytes);
    quietAt_.reset();
    if (cutter_.hasUnfinished()) {
        quietAt_ = Clock::now() + kQuiet;
    }
}

// What the program printed before it ended is still in the pipe when the reader was kept waiting.
void ShellJob::DrainAfterExit(const ChildProcess& child)
{
    for (std::size_t drained = 0; outputOpen_ && !stopped_ && drained < kMostDrained;) {
        const std::string bytes = ReadAvailable(child.outputFd());
        if (bytes.empty()) {
            return;
        }
        drained += bytes.size();
        HandOnLines(bytes);
    }
}

void ShellJob::CheckDeadlines(const ChildProcess& child)
{
    const auto now = Clock::now();
    if (quietAt_ && now >= *quietAt_) {
        quietAt_.reset();
        HandOn(cutter_.TakeUnfinished());
    }
    if (killAt_ && !killed_ && now >= *killAt_) {
        child.SignalGroup(SIGKILL);
        killed_ = true;
    }
}

void ShellJob::HandOnLines(std::string_view bytes)
{
    for (auto& piece : cutter_.Feed(bytes)) {
        HandOn(std::move(piece));
    }
}

void ShellJob::HandOn(std::string piece)
{
    // What is handed on goes by the queue as a rule.
    queue_.WaitForRoom(stopped_);
    if (!piece.empty() && !stopped_) {
        (*onOutput_)(std::move(piece));
    }
}

#include "shell_job.h"

#include "descriptors.h"
#include "runtime.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <tuple>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kFlushDelay{30};
constexpr std::chrono::milliseconds kPipeGrace{100};
constexpr std::chrono::milliseconds kTerminationGrace{500};
// How often to check for events that no descriptor reports.
constexpr std::chrono::milliseconds kPollInterval{20};
constexpr std::size_t kMaxInput = 65536;      // bytes
constexpr std::size_t kMaxDrained = 1 << 20;  // bytes
constexpr int kNotStarted = 127;              // The exit status that shells use.

// Signals are handled on the program's main thread.
void BlockSignalsInThisThread()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

ShellJob::ShellJob(Program program, std::shared_ptr<const OnOutput> onOutput, UiQueue& queue)
    : program_(std::move(program)),
      onOutput_(std::move(onOutput)),
      queue_(queue),
      status_(kNotStarted)
{
}

void ShellJob::Start(const Events& events)
{
    started_ = true;
    onProgress_ = events.progress;
    onStuck_ = events.stuck;
    std::ignore = MakePipe(wake_);  // Without a pipe, Wait polls for a stop.
    try {
        thread_ = std::thread([this, threadExits = events.threadExits] {
            BlockSignalsInThisThread();
            RunProgram();
            threadExits();
            exits_.set_value();
        });
    } catch (const std::system_error& error) {
        // As from the thread: the handler must not run inside of Start.
        queue_.Post([onOutput = onOutput_, reason = std::string(error.what())] {
            (*onOutput)("Cannot start a thread: " + reason + "\n");
        });
        events.threadExits();
        exits_.set_value();
    }
}

bool ShellJob::Send(std::string_view bytes)
{
    {
        const std::lock_guard lock(inputMutex_);
        if (input_.size() > kMaxInput) {
            return false;
        }
        input_ += bytes;
    }
    std::ignore = WriteFully(wake_[1], "i");
    return true;
}

void ShellJob::Stop()
{
    const auto dropped = std::exchange(done_, {});
    if (stopped_.exchange(true)) {
        return;
    }
    discardsOutput_ = !program_.forwardsAfterStop;
    if (!thread_.joinable()) {
        return;
    }
    std::ignore = WriteFully(wake_[1], "s");
    queue_.WakeWaiting();
    stuckTimer_ = CallAfter(kStuckTime, [this] {
        if (!WaitForExit(Clock::now())) {
            isStuck_ = true;
            onStuck_();
        }
    });
}

bool ShellJob::WaitForExit(std::chrono::steady_clock::time_point end) const
{
    return !thread_.joinable() || exited_.wait_until(end) == std::future_status::ready;
}

void ShellJob::Join()
{
    stuckTimer_.reset();
    if (thread_.joinable()) {
        thread_.join();
    }
    for (int* const fd : {&wake_[0], &wake_[1], &progress_[0]}) {
        CloseDescriptor(std::exchange(*fd, -1));
    }
}

void ShellJob::Complete()
{
    if (auto done = std::exchange(done_, {})) {
        Runtime::Protect([&done] { done(); });
    }
    if (const auto onFinished = std::exchange(onFinished_, {})) {
        onFinished(status_);
    }
}

void ShellJob::RunProgram()
{
    if (!program_.words) {
        return Forward(program_.words.error() + "\n");
    }
    auto environment = program_.environment;
    if (program_.reportsProgress && MakePipe(progress_)) {
        environment.push_back("QUILP_PROGRESS=" + std::to_string(ChildProcess::kExtraDescriptor));
    }
    auto child = ChildProcess::Start(
        *program_.words, environment, program_.folder,
        program_.takesInput ? ChildProcess::Input::Pipe : ChildProcess::Input::Empty, progress_[1]);
    CloseDescriptor(std::exchange(progress_[1], -1));
    if (!child) {
        return Forward(child.error() + "\n");
    }
    inputOpen_ = child->inputFd() >= 0;
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
    Forward(splitter_.TakeRest());
    if (stopped_) {
        // Processes of the group that have closed the pipe may still be running.
        child.SignalGroup(SIGKILL);
    }
    status_ = child.Reap();
}

bool ShellJob::IsFinished() const
{
    if (!programExited_) {
        return false;
    }
    return !outputOpen_ || killed_ || (!killAt_ && Clock::now() >= *abandonPipeAt_);
}

void ShellJob::Wait(const ChildProcess& child)
{
    auto until = Clock::now() + std::chrono::hours(1);
    for (const auto& deadline :
         {flushAt_, killAt_ ? std::nullopt : abandonPipeAt_, killed_ ? std::nullopt : killAt_}) {
        until = std::min(until, deadline.value_or(until));
    }
    if (child.exitFd() < 0 || wake_[0] < 0) {
        until = std::min(until, Clock::now() + kPollInterval);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    // poll() ignores a descriptor of -1.
    std::array<pollfd, 5> fds{{{outputOpen_ ? child.outputFd() : -1, POLLIN, 0},
                               {programExited_ ? -1 : child.exitFd(), POLLIN, 0},
                               {wake_[0], POLLIN, 0},
                               {HasInput() ? child.inputFd() : -1, POLLOUT, 0},
                               {progress_[0], POLLIN, 0}}};
    poll(fds.data(), fds.size(), std::max(0, static_cast<int>(left.count())));
    if (fds[2].revents != 0) {
        std::ignore = ReadAvailable(wake_[0]);
    }
    if (fds[3].revents != 0) {
        WriteInput(child);
    }
    if (fds[4].revents != 0) {
        ReadProgress();
    }
    if (fds[0].revents != 0) {
        ReadOutput(child);
    }
    if (!programExited_ && (fds[1].revents != 0 || child.exitFd() < 0) && child.HasExited()) {
        programExited_ = true;
        abandonPipeAt_ = Clock::now() + kPipeGrace;
    }
}

bool ShellJob::HasInput()
{
    const std::lock_guard lock(inputMutex_);
    return inputOpen_ && !input_.empty();
}

void ShellJob::WriteInput(const ChildProcess& child)
{
    const std::lock_guard lock(inputMutex_);
    const ssize_t n = write(child.inputFd(), input_.data(), input_.size());
    if (n > 0) {
        input_.erase(0, static_cast<std::size_t>(n));
    } else if (errno != EAGAIN && errno != EINTR) {
        inputOpen_ = false;
    }
}

void ShellJob::ReadOutput(const ChildProcess& child)
{
    std::string bytes = ReadAvailable(child.outputFd());
    if (bytes.empty()) {
        outputOpen_ = false;
        return;
    }
    ForwardAll(std::move(bytes));
    flushAt_.reset();
    if (splitter_.hasUnfinished()) {
        flushAt_ = Clock::now() + kFlushDelay;
    }
}

void ShellJob::ReadProgress()
{
    const std::string bytes = ReadAvailable(progress_[0]);
    if (bytes.empty()) {
        CloseDescriptor(std::exchange(progress_[0], -1));
        return;
    }
    progressLine_ += bytes;
    if (const auto progress = TakeProgress(progressLine_)) {
        onProgress_(*progress);
    }
}

// Output printed before the program exited is still in the pipe if this thread was blocked.
void ShellJob::DrainAfterExit(const ChildProcess& child)
{
    for (std::size_t drained = 0; outputOpen_ && !discardsOutput_ && drained < kMaxDrained;) {
        std::string bytes = ReadAvailable(child.outputFd());
        if (bytes.empty()) {
            return;
        }
        drained += bytes.size();
        ForwardAll(std::move(bytes));
    }
}

void ShellJob::CheckDeadlines(const ChildProcess& child)
{
    const auto now = Clock::now();
    if (flushAt_ && now >= *flushAt_) {
        flushAt_.reset();
        Forward(splitter_.TakeUnfinished());
    }
    if (killAt_ && !killed_ && now >= *killAt_) {
        child.SignalGroup(SIGKILL);
        killed_ = true;
    }
}

void ShellJob::ForwardAll(std::string bytes)
{
    if (!program_.splitsLines) {
        return Forward(std::move(bytes));
    }
    for (auto& piece : splitter_.Feed(bytes)) {
        Forward(std::move(piece));
    }
}

void ShellJob::Forward(std::string piece)
{
    // `onOutput_` usually posts to the queue, which must not grow without bounds.
    queue_.WaitForRoom(stopped_);
    if (!piece.empty() && !discardsOutput_) {
        Deliver(std::move(piece));
    }
}

// What the callback throws is reported on the user-interface thread.
void ShellJob::Deliver(std::string&& piece)
{
    try {
        (*onOutput_)(std::move(piece));
    } catch (...) {
        queue_.Post([error = std::current_exception()] { std::rethrow_exception(error); });
    }
}

#pragma once

#include "child_process.h"
#include "job_group.h"
#include "line_splitter.h"
#include "progress.h"
#include "toolkit.h"
#include "ui_queue.h"
#include "unique_function.h"

#include <array>
#include <atomic>
#include <chrono>
#include <expected>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// After this time, a stopped program that is still running cannot be killed: it waits in the
// kernel, for example for a disk that does not answer.
inline constexpr std::chrono::seconds kStuckTime{2};

// A program that runs in the background: a child process and the thread that reads its output.
// Owned by the Runtime while it runs. [ui]
class ShellJob {
  public:
    struct Program {
        // The program and its arguments, or a message to forward as its output instead.
        std::expected<std::vector<std::string>, std::string> words;
        std::vector<std::string> environment;  // "NAME=value"
        std::string folder;                    // Working directory; empty for this process's own.
        JobGroup group = JobGroup::Board;
        bool takesInput = false;         // Otherwise its standard input is empty.
        bool splitsLines = true;         // Otherwise output is forwarded as it arrives.
        bool forwardsAfterStop = false;  // Otherwise a stopped program's output is discarded.
        // It is told to report its progress (see resources/mpremote/launcher.py).
        bool reportsProgress = false;
        bool yields = false;  // It is stopped when another job of its group is started.
    };
    struct Events {
        // Called on the job's thread with the bytes that were copied, and those of the file.
        std::function<void(Progress)> progress;
        // Called on the job's thread, as its last function.
        std::function<void()> threadExits;
        // The program was stopped and has not ended for kStuckTime.
        std::function<void()> stuck;
    };
    // Called on the job's thread with one piece of output of at most 64 KiB; see SimpleShell.
    using OnOutput = std::function<void(std::string&&)>;

    // `queue` must outlive the job's thread.
    ShellJob(Program program, std::shared_ptr<const OnOutput> onOutput, UiQueue& queue);

    // The completion is called after the last piece of output, unless the job is stopped: then it
    // is destroyed without being called.
    void SetCompletion(unique_function<void()> done) { done_ = std::move(done); }
    // The handler is called when a started job has finished, whether it was stopped or not, with
    // the exit status, 128 plus the signal number, or 127 if the program could not be started.
    void SetFinishedHandler(std::function<void(int status)> handler)
    {
        onFinished_ = std::move(handler);
    }

    JobGroup group() const { return program_.group; }
    bool yields() const { return program_.yields; }
    // The words of the command line; empty if it was invalid.
    std::vector<std::string> words() const
    {
        return program_.words.value_or(std::vector<std::string>());
    }

    // Starts the job's thread.
    void Start(const Events& events);
    bool IsStarted() const { return started_; }

    // Sends bytes to the program's standard input. Returns false, and takes none of them, while too
    // many earlier ones have not been read. Bytes for a program that takes no input, or that has
    // closed it, are lost.
    bool Send(std::string_view bytes);

    // Terminates the program and drops the completion. Returns at once; further calls do nothing.
    void Stop();
    bool IsStopped() const { return stopped_; }
    bool IsStuck() const { return isStuck_; }

    // Waits for the thread, which must have called `threadExits`.
    void Join();
    // Waits until the thread of a stopped job is about to exit. False if it is not in time.
    bool WaitForExit(std::chrono::steady_clock::time_point end) const;
    // Gives up a thread that does not exit. It uses this object and the queue as long as it runs.
    void Detach() { thread_.detach(); }
    // Valid after Join.
    int status() const { return status_; }

    // Calls the completion and the finished handler.
    void Complete();

  private:
    using Clock = std::chrono::steady_clock;

    void RunProgram();
    void Follow(ChildProcess& child);
    void Wait(const ChildProcess& child);
    bool HasInput();
    void WriteInput(const ChildProcess& child);
    void ReadOutput(const ChildProcess& child);
    void DrainAfterExit(const ChildProcess& child);
    void ReadProgress();
    void CheckDeadlines(const ChildProcess& child);
    bool IsFinished() const;
    void ForwardAll(std::string bytes);
    void Forward(std::string piece);
    void Deliver(std::string&& piece);

    const Program program_;
    const std::shared_ptr<const OnOutput> onOutput_;
    unique_function<void()> done_;
    std::function<void(int status)> onFinished_;
    UiQueue& queue_;

    std::function<void(Progress)> onProgress_;
    std::function<void()> onStuck_;
    std::unique_ptr<EventSource> stuckTimer_;
    std::thread thread_;
    std::promise<void> exits_;
    std::future<void> exited_ = exits_.get_future();
    std::array<int, 2> wake_{-1, -1};
    bool started_ = false;
    bool isStuck_ = false;
    std::atomic<bool> stopped_ = false;
    std::atomic<bool> discardsOutput_ = false;
    std::mutex inputMutex_;
    std::string input_;  // Not yet written.
    int status_;         // Written by the thread; read after Join.

    // Used on the job's thread only.
    LineSplitter splitter_;
    std::array<int, 2> progress_{-1, -1};
    std::string progressLine_;  // Not yet complete.
    std::optional<Clock::time_point> flushAt_;  // When to forward the unfinished line.
    // When to stop reading the pipe of an exited program: other processes may keep it open.
    std::optional<Clock::time_point> abandonPipeAt_;
    std::optional<Clock::time_point> killAt_;  // When to send SIGKILL; set with SIGTERM.
    bool outputOpen_ = true;
    bool inputOpen_ = false;
    bool programExited_ = false;
    bool killed_ = false;
};

#pragma once

#include "child_process.h"
#include "line_splitter.h"
#include "ui_queue.h"
#include "unique_function.h"

#include <array>
#include <atomic>
#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Jobs of one group share a resource, such as the board's port: the Runtime starts a job only after
// every stopped job of its group has finished.
enum class JobGroup { Board, UserShell };

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
        bool splitsLines = true;         // Otherwise output is forwarded as it arrives.
        bool forwardsAfterStop = false;  // Otherwise a stopped program's output is discarded.
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

    // Starts the job's thread. `onThreadExit` is the last function that the thread calls.
    void Start(const std::function<void()>& onThreadExit);
    bool IsStarted() const { return started_; }

    // Terminates the program and drops the completion. Returns at once; further calls do nothing.
    void Stop();
    bool IsStopped() const { return stopped_; }

    // Waits for the thread, which exits soon after it has called `onThreadExit` or the job was
    // stopped.
    void Join();

    // Calls the completion and the finished handler.
    void Complete();

  private:
    using Clock = std::chrono::steady_clock;

    void RunProgram();
    void Follow(ChildProcess& child);
    void Wait(const ChildProcess& child);
    void ReadOutput(const ChildProcess& child);
    void DrainAfterExit(const ChildProcess& child);
    void CheckDeadlines(const ChildProcess& child);
    bool IsFinished() const;
    void ForwardAll(std::string bytes);
    void Forward(std::string piece);

    const Program program_;
    const std::shared_ptr<const OnOutput> onOutput_;
    unique_function<void()> done_;
    std::function<void(int status)> onFinished_;
    UiQueue& queue_;

    bool started_ = false;
    std::thread thread_;
    std::array<int, 2> wake_{-1, -1};
    std::atomic<bool> stopped_ = false;
    std::atomic<bool> discardsOutput_ = false;
    int status_;  // Written by the thread; read after Join.

    // Used on the job's thread only.
    LineSplitter splitter_;
    bool outputOpen_ = true;
    bool exited_ = false;
    std::optional<Clock::time_point> flushAt_;  // When to forward the unfinished line.
    // When to stop reading the pipe of an exited program: other processes may keep it open.
    std::optional<Clock::time_point> abandonPipeAt_;
    std::optional<Clock::time_point> killAt_;  // When to send SIGKILL; set with SIGTERM.
    bool killed_ = false;
};

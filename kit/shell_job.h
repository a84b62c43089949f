#pragma once

#include "child_process.h"
#include "line_cutter.h"
#include "ui_queue.h"
#include "unique_function.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Counts the jobs that were stopped and have not ended yet, so that the next command finds the port
// free. Usable on any thread.
class StoppedJobs {
  public:
    void Add();
    void Remove();
    // Waits until there are none. False when `giveUp` came first.
    bool WaitForNone(const std::atomic<bool>& giveUp);

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

// One command line of a SimpleShell: the program, the thread that reads what it prints, and the
// completion. Made, stopped, joined and destroyed on the user-interface thread.
class ShellJob {
  public:
    using OnOutput = std::function<void(std::string&&)>;

    ShellJob(std::string commandLine, std::shared_ptr<const OnOutput> onOutput,
             unique_function<void()> done, UiQueue& queue, StoppedJobs& stoppedJobs);

    // Starts the job's thread; `onEnd` is the last thing it calls there.
    void Start(const std::function<void()>& onEnd);

    // Has the program ended, and drops the completion. Returns at once; more calls do nothing.
    void Stop();

    // Waits for the thread, which ends soon after `onEnd` was called or the job was stopped.
    void Join();

    // Calls the completion, unless the job was stopped.
    void Complete();

  private:
    using Clock = std::chrono::steady_clock;

    void Work();
    void RunProgram();
    void Follow(ChildProcess& child);
    void Wait(const ChildProcess& child);
    void ReadOutput(const ChildProcess& child);
    void DrainAfterExit(const ChildProcess& child);
    void CheckDeadlines(const ChildProcess& child);
    bool IsFinished() const;
    void HandOnLines(std::string_view bytes);
    void HandOn(std::string piece);

    const std::string commandLine_;
    const std::vector<std::string> environment_;
    const std::shared_ptr<const OnOutput> onOutput_;
    unique_function<void()> done_;
    UiQueue& queue_;
    StoppedJobs& stoppedJobs_;

    std::thread thread_;
    std::array<int, 2> wake_{-1, -1};
    std::atomic<bool> stopped_ = false;
    std::mutex endMutex_;  // Guards ended_ against a stop at the same time.
    bool ended_ = false;

    // Of the job's thread.
    LineCutter cutter_;
    bool outputOpen_ = true;
    bool exited_ = false;
    std::optional<Clock::time_point> quietAt_;       // Hand on the line under way.
    std::optional<Clock::time_point> giveUpPipeAt_;  // The program has ended; others hold its pipe.
    std::optional<Clock::time_point> killAt_;        // SIGTERM was sent.
    bool killed_ = false;
};

#pragma once

#include "job_group.h"
#include "progress.h"
#include "ui_queue.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class BLooper;
class BMenu;
class BMenuItem;
class ShellJob;

// The state of the framework: the queue to the user-interface thread, the programs that run in the
// background, and the open windows. The host creates one after the application object and destroys
// it before it unloads a plug-in's module. [ui]
class Runtime {
  public:
    struct CommandEnd {
        bool isStopped = false;  // Otherwise the program exited by itself.
        int status = 0;          // The exit status; see ShellJob::SetFinishedHandler.
    };

    // Callbacks to the host. Each may be empty.
    struct Handlers {
        // The last job has finished and its completion has run.
        std::function<void()> idle;
        // A plug-in's window has closed.
        std::function<void()> windowClosed;
        // A plug-in's code has thrown an exception. Without a handler, the exception propagates.
        std::function<void(const std::string& error)> error;
        // A sentence for the user about something that went wrong outside of the program.
        std::function<void(const std::string& text)> warning;
        // A program of the group JobGroup::Board has started, or has ended. Every start is followed
        // by one end, before the next start. `words` are the words of the command line.
        std::function<void(const std::vector<std::string>& words)> commandStarted;
        std::function<void(const std::vector<std::string>& words, CommandEnd end)> commandEnded;
        // The running one copies a file. Called at most about 20 times a second.
        std::function<void(Progress progress)> commandProgress;
        // For hosts without windows: if set, pop-up menus are not shown. Instead, the action of the
        // returned item runs immediately; null for none.
        std::function<const BMenuItem*(const BMenu& menu)> choosePopUpItem;
        // Whether the action of the item that the user chose in a pop-up menu may run. Called after
        // the menu has closed.
        std::function<bool(const std::string& label)> mayPerform;
    };

    Runtime();
    // Calls ShutDown.
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    // The only Runtime. There must be one.
    static Runtime& Current();

    UiQueue& queue() { return *queue_; }

    Handlers handlers;

    // Calls a plug-in's code. If it throws an exception, the error handler is called with a
    // sentence.
    static void Protect(const std::function<void()>& call);

    // Whether no job is running, waiting to start or being stopped. Programs that do not end
    // although they were killed do not count.
    bool IsIdle() const;

    // Keeps an open window alive until Release.
    void Keep(std::shared_ptr<BLooper> window);
    void Release(const BLooper* window);
    // Closes every window unless it refuses, as when the user closes it.
    void CloseWindows();

    // Stops all jobs, waits until they have finished (about half a second; two seconds if a program
    // cannot be killed, which is then left behind with its thread), and destroys pending tasks and
    // the windows that are still open. No work runs afterwards; further calls do nothing.
    void ShutDown();

    // Starts a job as soon as all stopped jobs of its group have finished, and stops the running
    // ones that give way (ShellJob::Program::yields). A stopped job whose program cannot be killed
    // is reported after two seconds, and no longer waited for. False after ShutDown.
    bool Start(const std::shared_ptr<ShellJob>& job);

    // Sends input to the running program of a group. Returns false if there is none, or if it has
    // not read enough of the earlier input.
    bool SendInput(JobGroup group, std::string_view bytes);

    // Stops all jobs of a group.
    void StopJobs(JobGroup group);

  private:
    void StartWaitingJobs();
    bool MayStart(const ShellJob& job) const;
    void StartJob(ShellJob& job);
    void OnJobStuck(ShellJob& job);
    void OnJobFinished(const ShellJob* job);
    void ReportProgress(const ShellJob& job, Progress progress);
    void ReportEnd(const ShellJob& job);
    void NotifyIfIdle();

    std::shared_ptr<UiQueue> queue_ = std::make_shared<UiQueue>();
    std::vector<std::shared_ptr<ShellJob>> jobs_;  // In the order of the calls of Start.
    std::vector<std::shared_ptr<BLooper>> windows_;
    bool shutDown_ = false;
};

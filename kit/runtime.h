#pragma once

#include "ui_queue.h"
#include "unique_function.h"

#include <functional>
#include <memory>
#include <vector>

class BLooper;
class ShellJob;
class StoppedJobs;

// What the framework needs while a program uses it: the queue to the user-interface thread and the
// commands that run. The host makes one, on the user-interface thread and after the application
// object, and destroys it before it releases a plug-in's module.
class Runtime {
  public:
    Runtime();
    // Shuts down.
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    // The one that exists.
    static Runtime& Current();

    UiQueue& queue() { return queue_; }

    // Whether no command runs, or is being ended.
    bool IsIdle() const { return jobs_.empty(); }

    // Called on the user-interface thread when the last command has ended and its completion ran.
    void SetIdleHandler(std::function<void()> handler) { onIdle_ = std::move(handler); }

    // The windows that are open. Kept alive until they quit; `handler` is called when one did.
    void Keep(std::shared_ptr<BLooper> window);
    void Release(const BLooper* window);
    void SetWindowClosedHandler(std::function<void()> handler)
    {
        onWindowClosed_ = std::move(handler);
    }
    // Asks every window to close, as its user would.
    void CloseWindows();

    // Stops every command, waits for their ends (about half a second at most), and destroys what
    // was still to be delivered, and the windows that are still open. Nothing runs after it; more
    // calls do nothing.
    void ShutDown();

    // For SimpleShell: starts a job. False when the runtime is shut down.
    bool Start(const std::shared_ptr<ShellJob>& job);
    StoppedJobs& stoppedJobs() { return *stoppedJobs_; }

  private:
    void JobEnded(const ShellJob* job);

    UiQueue queue_;
    std::unique_ptr<StoppedJobs> stoppedJobs_;
    std::vector<std::shared_ptr<ShellJob>> jobs_;
    std::function<void()> onIdle_;
    std::vector<std::shared_ptr<BLooper>> windows_;
    std::function<void()> onWindowClosed_;
    bool shutDown_ = false;
};

#pragma once

#include "ui_queue.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class BLooper;
class BMenu;
class BMenuItem;
class ShellJob;

// What the framework needs while a program uses it: the queue to the user-interface thread, the
// programs that run in the background, and the open windows. The host makes one, on the
// user-interface thread and after the application object, and destroys it before it releases a
// plug-in's module. Used on the user-interface thread.
class Runtime {
  public:
    // What the host wants to be notified of or asked. Each may be empty.
    struct Handlers {
        // The last command has ended and its completion has run.
        std::function<void()> idle;
        // A plug-in's window has closed.
        std::function<void()> windowClosed;
        // Code of a plug-in has thrown an exception. Without a handler it is thrown on.
        std::function<void(const std::string& error)> error;
        // For hosts without windows: while it is set no pop-up menu is shown, and the action of the
        // item that it returns runs at once; null for none.
        std::function<const BMenuItem*(const BMenu& menu)> choosePopUpItem;
        // Whether the action of the item that the user chose in a pop-up menu may run. Called when
        // the menu has closed.
        std::function<bool(const std::string& label)> mayPerform;
    };

    Runtime();
    // Shuts down.
    ~Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;

    // The one that exists.
    static Runtime& Current();

    UiQueue& queue() { return queue_; }

    Handlers handlers;

    // Calls code of a plug-in. An exception is reported to the error handler as a sentence.
    static void Protect(const std::function<void()>& call);

    // Whether no command runs, waits or is being stopped.
    bool IsIdle() const { return jobs_.empty(); }

    // Keeps an open window alive until Release.
    void Keep(std::shared_ptr<BLooper> window);
    void Release(const BLooper* window);
    // Asks every window to close, as its user would.
    void CloseWindows();

    // Stops every command, waits until each has ended (about half a second at most), and destroys
    // undelivered work and the windows that are still open. Nothing runs after it; further calls do
    // nothing.
    void ShutDown();

    // Starts a job once no stopped job of its group is still ending. False after ShutDown.
    bool Start(const std::shared_ptr<ShellJob>& job);

  private:
    void StartWaitingJobs();
    bool MayStart(const ShellJob& job) const;
    void JobEnded(const ShellJob* job);

    UiQueue queue_;
    std::vector<std::shared_ptr<ShellJob>> jobs_;  // In the order of their Start.
    std::vector<std::shared_ptr<BLooper>> windows_;
    bool shutDown_ = false;
};

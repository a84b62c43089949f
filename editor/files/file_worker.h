#pragma once

#include "unique_function.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

// Works with files on its own threads, so that the window never waits for a slow disk or for a file
// system that no longer answers. Work has a key: work of the same key is done one at a time, and
// work that has not begun is replaced by newer work of its key. Hence at most one piece of work per
// key is waiting.
//
// If no thread can be started, the work is done at once by the caller's. A Runtime must exist. [ui]
class FileWorker {
  public:
    // What remains to be done on the user-interface thread; may be empty. It is posted to the
    // UiQueue, and dropped if the FileWorker has been destroyed.
    using Result = unique_function<void()>;
    // Runs on another thread, perhaps after the FileWorker was destroyed, so it must capture
    // copies.
    using Work = unique_function<Result()>;
    using Patience = std::chrono::milliseconds;

    // One slow file occupies one of the threads. `patience` is that of the destructor.
    FileWorker(int maxThreads, Patience patience);
    // Waits until all work is done. What takes longer than the patience is abandoned.
    ~FileWorker();
    FileWorker(const FileWorker&) = delete;
    FileWorker& operator=(const FileWorker&) = delete;

    // Receives a message for the user when no thread can be started, once.
    void SetProblemHandler(std::function<void(const std::string& problem)> handler);

    void Do(const std::string& key, Work work);

    // Waits until the work of this key is done and its result has run. False if it was not in time.
    bool WaitFor(const std::string& key, Patience patience);

    // Whether threads were abandoned. The process must then exit with _exit, because they may still
    // run while static objects are destroyed. [any]
    static bool HasAbandonedThreads();

  private:
    struct State;

    void StartThreads();
    void ReportProblem(const std::string& problem);

    std::shared_ptr<State> state_;
    const int maxThreads_;
    const Patience patience_;
    std::function<void(const std::string& problem)> problemHandler_;
};

#pragma once

#include "recovery.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A RecoveryStore with its own thread, so that typing does not wait for the disk. Operations are
// performed in the order of the calls. A Runtime must exist. [ui]
class RecoveryKeeper {
  public:
    // Receives the id of a copy that could not be stored, and a message for the user.
    using ErrorHandler = std::function<void(const std::string& id, const std::string& error)>;

    // `root` as for RecoveryStore. Errors are reported until the Runtime is shut down.
    RecoveryKeeper(std::string root, ErrorHandler onError);
    // Waits until all operations are finished.
    ~RecoveryKeeper();
    RecoveryKeeper(const RecoveryKeeper&) = delete;
    RecoveryKeeper& operator=(const RecoveryKeeper&) = delete;

    void Keep(std::string id, RecoveryCopy copy);
    void Discard(std::string id);
    // Waits until all previous operations are finished.
    std::vector<OrphanedCopy> Orphans();

  private:
    using Task = std::function<void()>;

    void Enqueue(Task task);
    void RunTasks();
    void Finish();

    RecoveryStore store_;  // Used by the thread only, while it is running.
    ErrorHandler onError_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Task> tasks_;
    bool stopping_ = false;
    std::thread thread_;  // Started by the first task.
};

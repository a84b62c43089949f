#pragma once

#include "recovery.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A RecoveryStore on a thread of its own, so that nobody who types waits for the disk. What is
// asked of it is done in the order of the calls. Used on the user-interface thread, while there is
// a Runtime.
class RecoveryKeeper {
  public:
    // Gets the id of a copy that could not be kept, and a sentence.
    using ErrorHandler = std::function<void(const std::string& id, const std::string& error)>;

    // `root` as for RecoveryStore. Errors are told until the Runtime is shut down.
    RecoveryKeeper(std::string root, ErrorHandler onError);
    // Waits until everything is done.
    ~RecoveryKeeper();
    RecoveryKeeper(const RecoveryKeeper&) = delete;
    RecoveryKeeper& operator=(const RecoveryKeeper&) = delete;

    void Keep(std::string id, RecoveryCopy copy);
    void Discard(std::string id);
    // Waits until everything before is done.
    std::vector<OrphanedCopy> Orphans();

  private:
    using Work = std::function<void()>;

    void Do(Work work);
    void DoAll();
    void Finish();

    RecoveryStore store_;  // The thread's while it runs.
    ErrorHandler onError_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> work_;
    bool ends_ = false;
    std::thread thread_;  // From the first work on.
};

#pragma once

#include "file_worker.h"
#include "recovery.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// A RecoveryStore with its own thread, so that typing does not wait for the disk. Of each document,
// only the newest copy waits for a slow disk. A Runtime must exist. [ui]
class RecoveryKeeper {
  public:
    // Receives the id of a copy that could not be stored, and a message for the user. The id is
    // empty if the message concerns all copies.
    using ErrorHandler = std::function<void(const std::string& id, const std::string& error)>;

    // `root` as for RecoveryStore. Errors are reported until the Runtime is shut down. The
    // destructor waits for the disk, but not longer than kEndPatience.
    RecoveryKeeper(std::string root, ErrorHandler onError);
    static constexpr std::chrono::seconds kEndPatience{10};

    void Keep(const std::string& id, RecoveryCopy copy);
    void Discard(const std::string& id);
    // Waits until the document's last operation is finished. False if it was not in time.
    bool WaitFor(const std::string& id, FileWorker::Patience patience);
    // Waits until the copies have been searched; empty if that takes too long.
    std::vector<OrphanedCopy> Orphans();

  private:
    std::shared_ptr<RecoveryStore> store_;  // Used by the only thread of the worker.
    ErrorHandler onError_;
    FileWorker worker_;
};

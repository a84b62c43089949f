#pragma once

#include "recovery.h"

#include <QThreadPool>

#include <functional>
#include <string>
#include <vector>

// A RecoveryStore on a thread of its own, so that nobody who types waits for the disk. What is
// asked of it is done in the order of the calls. Used on the user-interface thread.
class RecoveryKeeper {
  public:
    // `root` as for RecoveryStore. `onError` gets sentences, on the thread of this object.
    RecoveryKeeper(std::string root, std::function<void(const std::string&)> onError);
    // Waits until everything is done.
    ~RecoveryKeeper();

    void Keep(std::string id, RecoveryCopy copy);
    void Discard(std::string id);
    // Waits until everything before is done.
    std::vector<OrphanedCopy> Orphans();

  private:
    void Do(std::function<void()> work);

    RecoveryStore store_;
    std::function<void(const std::string&)> onError_;
    QObject context_;  // Errors that arrive after the end are dropped with it.
    QThreadPool thread_;
};

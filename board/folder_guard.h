#pragma once

#include <chrono>
#include <cstdint>
#include <string>

// Notices when a program fills the board's folder without the board's file system, which would
// refuse that. Used on one thread.
class FolderGuard {
  public:
    using Clock = std::chrono::steady_clock;

    // Allows the folder, at a path of this computer, to become a flash larger than it is now.
    explicit FolderGuard(std::string folder);

    // When to call isOverfull. The interval depends on how long it takes to look at all files.
    Clock::time_point nextCheck() const { return nextCheck_; }
    // Whether the folder has become larger than allowed. True only once: the folder is then allowed
    // to become a flash larger again. Before the next check is due, returns false.
    bool IsOverfull();

  private:
    std::uintmax_t CountBlocks();

    std::string folder_;
    std::uintmax_t allowedBlocks_ = 0;
    Clock::time_point nextCheck_;
};

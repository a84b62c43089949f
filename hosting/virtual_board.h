#pragma once

#include "child_process.h"

#include <chrono>
#include <expected>
#include <string>

// The virtual board that the editor has started. While it lives, the tools that the editor starts
// see the board among the serial ports. It ends with this object, and with the editor's process.
class VirtualBoard {
  public:
    // Does not wait until the board is ready. Errors are sentences.
    static std::expected<VirtualBoard, std::string> Start(const std::string& program,
                                                          const std::string& folder);
    VirtualBoard(VirtualBoard&&) = default;
    VirtualBoard& operator=(VirtualBoard&&) = delete;
    ~VirtualBoard();

    // Whether the board is ready, from which on the tools see it. An error when it never will be,
    // as after a few seconds. Not to be asked any more after either answer.
    std::expected<bool, std::string> CheckReady();
    // Waits for that answer.
    std::expected<void, std::string> WaitUntilReady();

    // False once its program has ended by itself.
    bool IsRunning() const { return !process_.HasExited(); }

  private:
    VirtualBoard(ChildProcess process, std::string linkFolder);

    ChildProcess process_;
    std::string linkFolder_;
    std::string said_;
    std::chrono::steady_clock::time_point latest_;  // That it may become ready.
};

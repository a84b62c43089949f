#pragma once

#include "child_process.h"

#include <chrono>
#include <expected>
#include <string>

// The process of a virtual board. While it is running, tools that the editor starts find the board
// among the serial devices. It is stopped when this object is destroyed, and exits when the
// editor's process does. [ui]
class VirtualBoard {
  public:
    // Starts the process without waiting until the board is ready. Errors are messages for the
    // user.
    static std::expected<VirtualBoard, std::string> Start(const std::string& program,
                                                          const std::string& folder);
    VirtualBoard(VirtualBoard&&) = default;
    VirtualBoard& operator=(VirtualBoard&&) = delete;
    ~VirtualBoard();

    // Whether the board is ready, so that tools find it. An error if the process has exited or is
    // not ready after a few seconds. Must not be called again after it has returned true or an
    // error.
    std::expected<bool, std::string> CheckReady();
    // Waits until the board is ready.
    std::expected<void, std::string> WaitUntilReady();

    // The link to a virtual board that another program runs, by which the environment names it for
    // tools; empty if it names none.
    static std::string NamedLink();
    // The path of the socket of its pins. It serves them there unless it was started otherwise.
    static std::string NamedPinsPath();
    // Makes tools search for other boards.
    static void ForgetNamedLink();

    // The path of the socket of its pins.
    std::string pinsPath() const;

    // False if the process has exited by itself.
    bool IsRunning() const { return !process_.HasExited(); }
    // A message for the user: that the process has exited by itself, and its reason if it gave one.
    std::string ExitReport();

  private:
    VirtualBoard(ChildProcess process, std::string linkFolder);

    ChildProcess process_;
    std::string linkFolder_;
    std::string output_;                              // Since it was ready.
    std::chrono::steady_clock::time_point deadline_;  // For becoming ready.
};

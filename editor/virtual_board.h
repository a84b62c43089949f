#pragma once

#include "child_process.h"

#include <expected>
#include <string>

// The virtual board that the editor has started. While it lives, the tools that the editor starts
// see the board among the serial ports. It ends with this object, and with the editor's process.
class VirtualBoard {
  public:
    // Waits until the board is ready, a few seconds at most. The error is a sentence.
    static std::expected<VirtualBoard, std::string> Start(const std::string& program,
                                                          const std::string& folder);
    VirtualBoard(VirtualBoard&&) = default;
    VirtualBoard& operator=(VirtualBoard&&) = delete;
    ~VirtualBoard();

    // False once its program has ended by itself.
    bool IsRunning() const { return !process_.HasExited(); }

  private:
    VirtualBoard(ChildProcess process, std::string linkFolder);

    ChildProcess process_;
    std::string linkFolder_;
};

// Where the user's own virtual board keeps its files.
std::string DefaultBoardFolder();

#pragma once

#include "runtime.h"

#include <functional>
#include <string>
#include <vector>

// Runs command lines of the host's own with the board's tool. They give way to the plug-in's
// commands, which in turn are stopped when a command of the host starts: there is one port. [ui]
class BoardTool {
  public:
    // `onOutput` is called on the user-interface thread with each piece of output, and must be
    // valid until the Runtime is shut down. `runtime` must outlive this object.
    BoardTool(Runtime& runtime, std::function<void(const std::string& text)> onOutput);

    // `words` are the words of the whole line, beginning with the tool's path. `done` receives the
    // exit status, unless the command is stopped; it may be empty.
    void Run(const std::vector<std::string>& words, std::function<void(int status)> done = {});

  private:
    Runtime& runtime_;
    std::function<void(const std::string& text)> onOutput_;
};

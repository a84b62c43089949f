#pragma once

#include "runtime.h"

#include <functional>
#include <string>
#include <vector>

// Runs command lines of the host's own with the board's tool. They give way to the plug-in's
// commands, which in turn are stopped when a command of the host starts: there is one port. [ui]
class BoardTool {
  public:
    // Called on the user-interface thread with each piece of output.
    using OnOutput = std::function<void(const std::string& text)>;
    // Called with the exit status when the command has ended, but not when it was stopped.
    using OnDone = std::function<void(int status)>;

    // `program` is the path of the tool. `worksheet` must be valid until the Runtime is shut down.
    // `runtime` must outlive this object.
    BoardTool(Runtime& runtime, std::string program, OnOutput worksheet);

    // `words` are the words after the tool's path. The output goes to the worksheet.
    void Run(const std::vector<std::string>& words, OnDone done = {})
    {
        Run(words, worksheet_, std::move(done));
    }
    // The callbacks may outlive the caller: what the program printed before it was stopped still
    // arrives.
    void Run(const std::vector<std::string>& words, OnOutput onOutput, OnDone done);

  private:
    Runtime& runtime_;
    std::string program_;
    OnOutput worksheet_;
};

#pragma once

#include "unique_function.h"

#include <functional>
#include <memory>
#include <string>

// Runs one program at a time in the background and forwards its output.
//
// Owned through std::shared_ptr. No call waits for the program: Run, Stop and the destructor return
// at once. [ui]
class SimpleShell : public std::enable_shared_from_this<SimpleShell> {
  public:
    // `onOutput` is called on one of the shell's own threads with each piece of the program's
    // output (standard output and error, in the order they were written). A piece is one line
    // including its line ending; an unterminated line is forwarded after 30 ms without output, and
    // at the end. A piece holds at most 64 KiB and never splits a UTF-8 character. `onOutput` is
    // destroyed on the user-interface thread. `label` identifies the shell when debugging.
    SimpleShell(std::function<void(std::string&&)> onOutput, const std::string& label);

    // Stops the running command.
    ~SimpleShell();

    SimpleShell(const SimpleShell&) = delete;
    SimpleShell& operator=(const SimpleShell&) = delete;

    // Stops the running command and starts another. The line is split into words by a shell's rules
    // for spaces, quotes and backslashes; no other character is special, so a file name cannot
    // start another program. The command starts after the process groups of all commands stopped
    // earlier have exited. If the line cannot be split or the program cannot be started, one line
    // of output reports that.
    //
    // `done` may be empty. It is called once on the user-interface thread, after every piece has
    // been forwarded, unless the command is stopped: then it is destroyed without being called.
    void Run(const std::string& commandLine, unique_function<void()>&& done);

    // Terminates the command and every process of its group: with SIGTERM, and with SIGKILL half a
    // second later. No more output is forwarded; output that was forwarded before still arrives.
    void Stop();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

#pragma once

#include "unique_function.h"

#include <functional>
#include <memory>
#include <string>

// Runs one program at a time in the background and hands on what it prints.
//
// Owned through std::shared_ptr. Created, used and destroyed on the user-interface thread, where
// no call waits for the program: Stop and the destructor return at once, whatever it does.
class SimpleShell : public std::enable_shared_from_this<SimpleShell> {
  public:
    // `onOutput` is called on a thread of the shell's own with each piece of what the program
    // prints (standard output and error, in the order they were written). A piece is one line with
    // its ending; a line that is not ended is handed on after 30 ms of quiet, and at the end. A
    // piece holds at most 64 KiB and never splits a UTF-8 character. `onOutput` is destroyed on
    // the user-interface thread. `label` names the shell for whoever debugs it.
    SimpleShell(std::function<void(std::string&&)> onOutput, const std::string& label);

    // Stops the command that runs.
    ~SimpleShell();

    SimpleShell(const SimpleShell&) = delete;
    SimpleShell& operator=(const SimpleShell&) = delete;

    // Starts a command line, after stopping the one that runs. The line is cut into words by a
    // shell's rules for blanks, quotes and backslashes; nothing else in it has a meaning, so that
    // no file name can start another program. It starts once the groups of commands stopped
    // earlier have ended. A line that cannot be cut, or a program that cannot be started, is told
    // as one line of output.
    //
    // `done` may be empty. It is called once on the user-interface thread, after every piece has
    // been handed on, unless the command is stopped: then it is destroyed without a call.
    void Run(const std::string& commandLine, unique_function<void()>&& done);

    // Ends the command and every process of its group: SIGTERM, and SIGKILL half a second later.
    // Hands on nothing more; what was handed on before still arrives where it was sent.
    void Stop();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

#pragma once

#include <sys/types.h>

#include <chrono>
#include <expected>
#include <string>
#include <vector>

// A program in a session and process group of its own, with an empty standard input and with
// standard output and error merged into one pipe. One thread at a time may use it. It must be
// reaped before it is destroyed.
class ChildProcess {
  public:
    // `environment` holds "NAME=value" words. A program without "/" is looked for in PATH. It
    // starts in `folder`; empty for this process's own. The error is "program: reason".
    static std::expected<ChildProcess, std::string> Start(
        const std::vector<std::string>& words, const std::vector<std::string>& environment,
        const std::string& folder = {});
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ~ChildProcess();

    pid_t pid() const { return pid_; }
    // The reading end of the pipe.
    int outputFd() const { return output_; }
    // Readable when the program has ended; -1 where the system has no such descriptor, and
    // HasExited is to be asked from time to time.
    int exitFd() const { return exit_; }
    // Whether the program has ended. It keeps its number until it is reaped, so a signal cannot
    // reach a stranger.
    bool HasExited() const;
    // Signals every process of the group. Not after Reap.
    void SignalGroup(int number) const;
    // Waits for the program's end and gives its number back. Returns the exit status, or 128 and
    // the signal's number.
    int Reap();
    // Tells the program to terminate, waits, kills its group when the time is up, and reaps it.
    // Does nothing for a program that is reaped or was moved away.
    void End(std::chrono::milliseconds patience);

  private:
    ChildProcess() = default;

    pid_t pid_ = -1;
    int output_ = -1;
    int exit_ = -1;
};

// This process's environment as words.
std::vector<std::string> CurrentEnvironment();

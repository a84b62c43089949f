#pragma once

#include <sys/types.h>

#include <chrono>
#include <expected>
#include <string>
#include <vector>

// A child process in its own session and process group. Its standard input is empty or a pipe, and
// its standard output and error are merged into one pipe. Used by one thread at a time. It must be
// reaped before this object is destroyed.
class ChildProcess {
  public:
    enum class Input { Empty, Pipe };
    // The number that an extra descriptor gets in the process.
    static constexpr int kExtraDescriptor = 3;

    // Starts the program words[0]; if the name contains no "/", it is searched for in PATH.
    // `environment` consists of words of the form "NAME=value". `folder` is the working directory;
    // empty for this process's own. `extra` is a descriptor that the process inherits, too; -1 for
    // none. The error is "program: reason".
    static std::expected<ChildProcess, std::string> Start(
        const std::vector<std::string>& words, const std::vector<std::string>& environment,
        const std::string& folder = {}, Input input = Input::Empty, int extra = -1);
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ~ChildProcess();

    pid_t pid() const { return pid_; }
    // The reading end of the pipe.
    int outputFd() const { return output_; }
    // The writing end of the pipe for input, which does not block; -1 if there is none.
    int inputFd() const { return input_; }
    // Readable when the process has exited; -1 if the system does not support such descriptors.
    // Then HasExited must be polled.
    int exitFd() const { return exit_; }
    // Whether the process has exited. Its process ID remains reserved until Reap, so a signal
    // cannot reach an unrelated process. A process that other code of this program has reaped, or
    // the system because SIGCHLD is ignored, counts as exited with status 0.
    bool HasExited() const;
    // Sends a signal to all processes of the group. Must not be called after Reap.
    void SignalGroup(int number) const;
    // Waits until the process has exited and releases its process ID. Returns the exit status, or
    // 128 plus the signal number.
    int Reap();
    // Sends SIGTERM to the group, waits until the process has exited or the time is up, kills the
    // group, and reaps the process. Does nothing if it has been reaped or moved from.
    void Terminate(std::chrono::milliseconds timeout);

  private:
    ChildProcess() = default;

    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    int exit_ = -1;
};

// This process's environment, as words of the form "NAME=value".
std::vector<std::string> CurrentEnvironment();

#pragma once

#include "child_process.h"

#include <chrono>
#include <string>
#include <vector>

struct ProgramResult {
    int status = -1;
    std::string output;  // standard output and error
};

// Runs a program until it exits, or kills it after a minute (the status is then 137). `variables`
// have the form "NAME=value".
ProgramResult RunProgram(const std::vector<std::string>& words,
                         const std::vector<std::string>& variables = {});

// A program that runs in the background. Terminated with this object.
class BackgroundProgram {
  public:
    explicit BackgroundProgram(const std::vector<std::string>& words,
                               const std::vector<std::string>& variables = {});
    BackgroundProgram(const BackgroundProgram&) = delete;
    BackgroundProgram& operator=(const BackgroundProgram&) = delete;
    ~BackgroundProgram();

    // Reads until the output so far contains `text`. False if it did not in time.
    bool WaitForOutput(const std::string& text);
    const std::string& output() const { return output_; }
    void Signal(int number) { process_.SignalGroup(number); }
    bool WaitForExit(std::chrono::milliseconds patience = std::chrono::seconds(20));
    pid_t pid() const { return process_.pid(); }
    // The exit status. Waits for the exit.
    int Status() { return process_.Reap(); }
    bool HasExited() const { return process_.HasExited(); }
    // Whether the program blocks when it prints more.
    bool IsPipeFull() const;

  private:
    ChildProcess process_;
    std::string output_;
};

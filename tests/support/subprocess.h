#pragma once

#include "child_process.h"

#include <chrono>
#include <string>
#include <vector>

struct ProgramResult {
    int status = -1;
    std::string output;  // standard output and error
};

// Runs a program to its end, or kills it when the time is up (then the status is 137).
ProgramResult RunProgram(const std::vector<std::string>& words,
                         const std::vector<std::string>& variables = {},
                         std::chrono::seconds patience = std::chrono::seconds(60));

// A program that runs beside the test. Ended with this object.
class BackgroundProgram {
  public:
    explicit BackgroundProgram(const std::vector<std::string>& words,
                               const std::vector<std::string>& variables = {});
    BackgroundProgram(const BackgroundProgram&) = delete;
    BackgroundProgram& operator=(const BackgroundProgram&) = delete;
    ~BackgroundProgram();

    // Reads until the output so far holds `text`. False when it did not in time.
    bool WaitForOutput(const std::string& text,
                       std::chrono::milliseconds patience = std::chrono::seconds(20));
    const std::string& output() const { return output_; }
    void Signal(int number) { process_.SignalGroup(number); }
    bool WaitForExit(std::chrono::milliseconds patience);
    pid_t pid() const { return process_.pid(); }
    // The exit status, once it has ended.
    int Status() { return process_.Reap(); }
    bool HasExited() const { return process_.HasExited(); }
    // How many bytes it has printed that nobody has read.
    int UnreadOutput() const;

  private:
    ChildProcess process_;
    std::string output_;
};

#pragma once

#include "options.h"
#include "plugin_module.h"

#include <string>

// What the program does, in its several ways. Each has its application object already, runs until
// it ends, and returns the exit status.

enum ExitStatus : int { kSuccess = 0, kFailure = 1, kUsageError = 2, kNoPlugin = 3 };

// Full paths; empty for none.
struct Files {
    std::string document;
    std::string target;
};

int RunBatch(const Options& options, const Files& files, const PluginModule& plugin);

// The editor with its windows.
int RunEditor(const Options& options, const Files& files, const PluginModule& plugin);

// The Device window alone. What belongs into the worksheet goes to standard output.
int RunDeviceWindow(const Options& options, const PluginModule& plugin);

// Tells the user on standard error; returns the status.
int Complain(const std::string& message, int status);

// The virtual board's program, and the folder for its files.
std::string BoardProgram();
std::string BoardFolder(const Options& options);

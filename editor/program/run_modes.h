#pragma once

#include "options.h"
#include "plugin_module.h"

#include <string>

// The modes of the program. Each function requires the application object, runs until the program
// is to exit, and returns the exit status. [ui]

enum ExitStatus : int { kSuccess = 0, kFailure = 1, kUsageError = 2, kNoPlugin = 3 };

// Full paths; empty if there is none.
struct Files {
    std::string document;
    std::string target;
};

int RunBatch(const Options& options, const Files& files, const PluginModule& plugin);

// Runs the editor with its windows.
int RunEditor(const Options& options, const Files& files, const PluginModule& plugin);

// Runs only the Device window. Output for the worksheet is written to standard output.
int RunDeviceWindow(const Options& options, const PluginModule& plugin);

// Prints the message to standard error and returns the status.
int ReportError(const std::string& message, int status);

// The paths of the virtual board's program and of the folder for its files.
std::string BoardProgram();
std::string BoardFolder(const Options& options);

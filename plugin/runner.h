#pragma once

#include "PluginInterface.h"
#include "SimpleShell.h"
#include "unique_function.h"

#include <functional>
#include <memory>
#include <string>

// The tool runner: one mpremote command line at a time. All of it belongs to the user-interface
// thread, including the globals.

// Receives each piece of a command's output on the user-interface thread, with a valid host.
using OutputHandler = std::function<void(PluginInterface*, const std::string& text)>;

// The shell of the last command line, also when that has ended; empty when none was started or the
// last was stopped by Stop().
extern std::shared_ptr<SimpleShell> gShell;

// The leaf name of the file that was run last, until Stop(). With C linkage, since C++ compilers
// may decorate the name of a variable of this type.
extern "C" std::string gRunningCommand;

// The first word of every command line: the tool's script in the plug-in's resources. Left
// unquoted on purpose, so a folder with a blank in its name cannot hold the plug-in.
std::string MPRemoteExecutable(PluginInterface* pi);

// Starts a command line, after stopping the one that runs. Without a handler the output goes to the
// worksheet. `done` may be empty; it is called when the line has ended, not when it was stopped.
void Execute(PluginInterface* pi, const std::string& commandLine, const OutputHandler& onOutput,
             unique_function<void()>&& done);

// Whether there is a shell, running or ended.
bool Running();

// Stops what runs, and keeps the shell and the name of the file.
void ResetShell();

// Stops what runs, and forgets the shell and the name of the file.
void Stop();

// Writes text into the worksheet as the plug-in always does it; an OutputHandler.
void WriteToWorksheet(PluginInterface* pi, const std::string& text);

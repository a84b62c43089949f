#pragma once

#include "PluginInterface.h"
#include "SimpleShell.h"
#include "unique_function.h"

#include <functional>
#include <memory>
#include <string>

// The tool runner runs one mpremote command line at a time. [ui], including the globals.

// Receives each piece of a command's output on the user-interface thread, with a valid host.
using OutputHandler = std::function<void(PluginInterface*, const std::string& text)>;

// The shell of the last command line, even if that has finished; empty when none was started or
// Stop() released it.
extern std::shared_ptr<SimpleShell> gShell;

// The leaf name of the file that was run last, until Stop(). It has C linkage because C++ compilers
// may decorate the name of a variable of this type.
extern "C" std::string gRunningCommand;

// The first word of every command line: the tool's script in the plug-in's resources. It is
// unquoted on purpose, so the path of the plug-in must not contain a space.
std::string MPRemoteExecutable(PluginInterface* pi);

// Starts a command line after stopping the running one. Without a handler the output goes to the
// worksheet. `done` may be empty; it is called when the command has finished, but not when it was
// stopped.
void Execute(PluginInterface* pi, const std::string& commandLine, const OutputHandler& onOutput,
             unique_function<void()>&& done);

// Whether there is a shell, whether its command still runs or not.
bool Running();

// Stops the running command, and keeps the shell and the file's name.
void ResetShell();

// Stops the running command, releases the shell and clears the file's name.
void Stop();

// The default output handler: writes the text into the worksheet.
void WriteToWorksheet(PluginInterface* pi, const std::string& text);

#pragma once

#include "PluginInterface.h"

#include <string>

// The user's commands. Each starts one command line of the tool and returns at once; the tool's
// output, including its errors, goes to the worksheet. [ui]

// Runs the runnable file on the board. Does nothing and returns false when there is none.
bool Run(PluginInterface* pi);

// Stops the running command.
void Stop(PluginInterface* pi);

// Copies the runnable file to the board, under this name or, when it is empty, under its own. Does
// nothing when there is no runnable file.
void Upload(PluginInterface* pi, std::string name);

// Lists the board's current directory.
void List(PluginInterface* pi);

// Shows the attached boards and the board's disk usage. Ports without a board are omitted.
void Status(PluginInterface* pi);

// Inserts a copy command for editing into the worksheet. Runs nothing.
void DumpUpload(PluginInterface* pi);

// Opens the Device window, or brings it to the front.
void OpenWindow(PluginInterface* pi);

#pragma once

#include "PluginInterface.h"

#include <string>

// The commands that a user gives. Each starts one command line of the tool and returns at once;
// what the tool prints, its errors included, goes to the worksheet.

// Runs the runnable file on the board. False, and nothing is done, when there is none.
bool Run(PluginInterface* pi);

// Stops what runs.
void Stop(PluginInterface* pi);

// Copies the runnable file to the board, under this name or, when it is empty, under its own. Does
// nothing when there is no runnable file.
void Upload(PluginInterface* pi, std::string name);

// Lists the board's current directory.
void List(PluginInterface* pi);

// Shows which boards are attached and how full the board is; ports without a board are left out.
void Status(PluginInterface* pi);

// Puts a copy command that is ready to be edited into the worksheet, and runs nothing.
void DumpUpload(PluginInterface* pi);

// Opens the Device window, or brings it to the front.
void OpenWindow(PluginInterface* pi);

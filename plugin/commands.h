#pragma once

#include "PluginInterface.h"

// The commands that a user gives. Each starts one command line of the tool and returns at once;
// what the tool prints, its errors included, goes to the worksheet.

// Runs the runnable file on the board. False, and nothing is done, when there is none.
bool Run(PluginInterface* pi);

// Stops what runs.
void Stop(PluginInterface* pi);

#pragma once

#include <string>
#include <vector>

// A SimpleShell in place of the kit's: a test program that contains it starts no command. It keeps
// SimpleShell's contract for completions.
namespace shells {

// What was called since the last time, in order: "new LABEL", "run LINE", "stop" and "release".
std::vector<std::string> TakeCalls();

// The command of the shell that was made last prints a piece of output, or ends.
void Print(std::string piece);
void Finish();

}  // namespace shells

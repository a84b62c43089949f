#pragma once

#include <string>
#include <vector>

// Replaces the kit's SimpleShell in a test program by one that starts no command. Like the kit's,
// it drops the completion when it is stopped.
namespace shells {

// Returns and forgets the calls, in order: "new LABEL", "run LINE", "stop" and "release".
std::vector<std::string> TakeCalls();
// Has the newest shell's command print a piece of output.
void Print(std::string piece);
// Calls the completion of the last command, if it was not dropped.
void Finish();

}  // namespace shells

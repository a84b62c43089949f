#pragma once

// How a program protects itself from what it inherits from the process that starts it. Call these
// functions before threads are created.

// Call this first in main:
// - Standard descriptors that are closed are opened so that their use fails. Otherwise the next
//   file or socket would get such a number, and would receive what the program prints.
// - SIGCHLD gets its default action: if it were ignored, the system would discard the exit status
//   of child processes.
// - SIGPIPE and SIGXFSZ are ignored, so that writing fails with EPIPE or EFBIG instead.
void PrepareProcess();

// Sets the signal's handler, which may be SIG_DFL, unless the signal is ignored, as with nohup.
// Interrupted system calls are restarted.
void HandleUnlessIgnored(int number, void (*handler)(int));

#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// Helper functions for file descriptors and processes. [any]

// Creates a pipe; both ends are closed on exec. On failure returns false and sets errno.
bool MakePipe(std::array<int, 2>& ends);

void SetNonBlocking(int fd);
void CloseDescriptor(int fd);  // -1 is ignored.

// Sets the capacity of a pipe, if the system supports that.
void SetPipeCapacity(int fd, int bytes);

// Creates memory that processes can share by mapping the descriptor, which is closed on exec. On
// failure returns -1 and sets errno.
int MakeSharedMemory(std::size_t size);

// Makes the system send `signal` to this process when its parent exits, if it supports that. If the
// parent has already exited, the signal is raised immediately. `parent` is the parent's process ID.
void SignalOnParentExit(pid_t parent, int signal);

// Reads the bytes that are available, at most 64 KiB, without blocking.
std::string ReadAvailable(int fd);

// Writes all of the data and blocks while the descriptor is not writable. On failure returns false
// and sets errno.
bool WriteFully(int fd, std::string_view data);

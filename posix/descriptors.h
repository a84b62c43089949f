#pragma once

#include <sys/types.h>

#include <array>
#include <string>
#include <string_view>

// Small calls on file descriptors. Where a system lacks a call, the portable way stands beside it.

// Both ends closed on exec. False, with errno set, when there is none to be had.
bool MakePipe(std::array<int, 2>& ends);

void SetNonBlocking(int fd);
void CloseDescriptor(int fd);  // -1 is allowed

// Asks for a pipe that holds at most `bytes`; systems that cannot keep their own size.
void LimitPipe(int fd, int bytes);

// Has this process get `signal` when its parent ends, where the system can; at once when that has
// happened already. `parent` is the parent's number as it knows it.
void EndWithParent(pid_t parent, int signal);

// Reads once what is there to read now, at most 64 KiB, without waiting.
std::string ReadAvailable(int fd);

// Writes all of it, waiting where the descriptor waits. False, with errno set, when it cannot.
bool WriteFully(int fd, std::string_view data);

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

// How the interpreter's process is kept from everything of this computer but the board's folder.
// The interpreter applies the rules to itself when it has started, before it executes a program, so
// that it needs no access to its own files any more. They cannot be taken back. [any]

// Landlock rules: files of `folder` may be read and written, those of `modules` may be read, and
// nothing else. Returns a descriptor that is closed on exec; -1 if the system has no Landlock.
int MakeFileRules(const std::string& folder, const std::string& modules);

// A seccomp filter: the system calls that the interpreter needs. It has no network, starts no
// process and signals only itself, which is the process `pid`. Empty if the system has no such
// filters.
std::string MakeSystemCallFilter(pid_t pid);

// Limits the calling process: `memory` bytes of address space, files of `file` bytes, few
// descriptors. May be called between fork and exec.
void LimitResources(std::size_t memory, std::size_t file);

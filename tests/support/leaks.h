#pragma once

#include <sys/types.h>

#include <cstddef>
#include <iosfwd>

// What this process holds of the system's: to be the same before and after.
struct Holdings {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    bool children = false;

    bool operator==(const Holdings&) const = default;
};

Holdings CurrentHoldings();

// The current ones, given a moment to become the expected: the system removes a thread that has
// ended from its list a little later.
Holdings SettledHoldings(const Holdings& expected);

// For failure messages.
void PrintTo(const Holdings& holdings, std::ostream* out);

// Whether a process, which need not be a child, runs. Its parent may not have reaped it yet.
bool IsAlive(pid_t process);

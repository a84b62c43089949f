#pragma once

#include <sys/types.h>

#include <cstddef>
#include <iosfwd>

// The system resources that this process holds.
struct Holdings {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    bool children = false;

    bool operator==(const Holdings&) const = default;
};

Holdings CurrentHoldings();

// Waits a moment for the expected ones, since an exited thread remains in the system's list for a
// short time.
Holdings SettledHoldings(const Holdings& expected);

// For failure messages.
void PrintTo(const Holdings& holdings, std::ostream* out);

// Whether any process is running. A zombie is not.
bool IsAlive(pid_t process);

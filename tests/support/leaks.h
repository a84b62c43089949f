#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

// What this process holds of the system's: to be the same before and after.
struct Holdings {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    bool children = false;

    bool operator==(const Holdings&) const = default;
};

Holdings CurrentHoldings();

// The current ones, given a moment to become the expected: the system takes a thread that has ended
// off its list a little later.
Holdings SettledHoldings(const Holdings& expected);

// For failure messages.
void PrintTo(const Holdings& holdings, std::ostream* out);

#pragma once

#include <optional>
#include <string>

// How much of the files has been copied, in bytes. [any]
struct Progress {
    long done = 0;
    long total = 0;
};

// Removes the complete lines of a report, such as "1024 4096\n", and returns what the last one
// says. Lines that are different are ignored.
std::optional<Progress> TakeProgress(std::string& report);

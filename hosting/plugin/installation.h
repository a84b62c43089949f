#pragma once

#include <string>

// Where the files lie that a host needs which is a library in another program, in the build tree
// and when installed. [any]
struct Installation {
    std::string module;        // The module that is the plug-in on every host.
    std::string boardProgram;  // The virtual board.

    // Searches the folders above the library that contains this function for the folder "quilp".
    // The paths are empty if there is none.
    static Installation Find();
};

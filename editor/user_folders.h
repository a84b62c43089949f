#pragma once

#include <string>

// Where the editor keeps what is this user's, by the XDG base directory specification. None of the
// folders need exist.
struct UserFolders {
    std::string config;  // Settings.
    std::string data;    // The virtual board's files.
    std::string state;   // What the editor looked like last, and copies of unsaved text.

    static UserFolders OfUser();
};

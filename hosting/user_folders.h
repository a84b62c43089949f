#pragma once

#include <string>

// Where a host keeps what belongs to this user, in the XDG base directories. None of the folders
// need exist.
struct UserFolders {
    std::string config;  // Settings.
    std::string data;
    std::string state;  // What the editor looked like last, and copies of unsaved text.

    static UserFolders OfUser();

    // The files of the user's virtual board.
    std::string boardFolder() const { return data + "/virtual-board"; }
};

#pragma once

#include <string>

// The folders for this user's files, in the XDG base directories. They need not exist. [any]
struct UserFolders {
    std::string config;  // Settings.
    std::string data;
    std::string state;  // The worksheet, and copies of unsaved text.

    static UserFolders OfUser();

    std::string editorSettings() const { return config + "/editor.ini"; }
    std::string pluginSettings() const { return config + "/plugins.settings"; }
    // The files of the user's virtual board.
    std::string boardFolder() const { return data + "/virtual-board"; }
};

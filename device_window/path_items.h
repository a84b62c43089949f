#pragma once

#include <string>
#include <vector>

// One directory in the path pop-up.
struct PathItem {
    std::string label;
    std::string path;  // The new current path; below the root it begins with "//".
    bool isRoot;

    bool operator==(const PathItem&) const = default;
};

// The items for a path: the directory itself first, the root, labelled with the board's name, last.
// Empty for an empty path. [any]
std::vector<PathItem> PathItems(const std::string& currentPath, const std::string& deviceName);

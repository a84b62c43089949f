#pragma once

#include <string>
#include <vector>

// One directory that the path pop-up offers.
struct PathItem {
    std::string label;
    std::string path;  // what becomes the current path; below the root it begins with "//"
    bool isRoot;

    bool operator==(const PathItem&) const = default;
};

// What the pop-up offers for a path: the directory itself first, the root, under the name of the
// board, last. Nothing for an empty path.
std::vector<PathItem> PathItems(const std::string& currentPath, const std::string& deviceName);

#include "path_items.h"

#include "device_path.h"

#include <algorithm>

std::vector<PathItem> PathItems(const std::string& currentPath, const std::string& deviceName)
{
    std::vector<PathItem> items;
    if (currentPath.empty()) {
        return items;
    }
    std::string path;
    for (PathIter i(currentPath); !i.AtEnd(); i.Advance()) {
        const std::string component(i.Component());
        const bool isRoot = component == "/";
        if (!path.empty()) {
            path +=
                '/';  // Also after the root, so that an item always differs from the current path.
        }
        path += component;
        items.push_back({isRoot ? deviceName : component, path, isRoot});
    }
    std::ranges::reverse(items);
    return items;
}

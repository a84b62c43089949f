#include "device_path.h"

#include <algorithm>

std::string AppendPath(std::string_view dir, std::string_view leaf)
{
    std::string path(dir);
    if (!dir.ends_with('/')) {
        path += '/';
    }
    return path += leaf;
}

std::string ParentPath(std::string_view path)
{
    return std::string(path.substr(0, path.rfind('/')));
}

std::string LeafItem(std::string_view path)
{
    return std::string(path.substr(path.rfind('/') + 1));  // npos + 1 is 0.
}

PathIter::PathIter(std::string_view whole)
    : path(whole), start(0), end(std::min(whole.find_first_not_of('/'), whole.size()))
{
    if (end >= 2) {
        start = end - 1;
    }
}

void PathIter::Advance()
{
    if (start == path.size()) {
        return;
    }
    const bool wasRoot = path[start] == '/';
    start = end;
    if (!wasRoot) {
        start = std::min(path.find_first_not_of('/', start), path.size());
    }
    end = std::min(path.find('/', start), path.size());
}

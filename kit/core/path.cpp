#include "Path.h"

std::string AppendPath(const std::string& dir, const std::string& leaf)
{
    return dir.ends_with('/') ? dir + leaf : dir + "/" + leaf;
}

std::string ParentPath(const std::string& path)
{
    const auto slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

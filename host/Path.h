#pragma once

#include <string>

// `dir` and `leaf` with one "/" between them; a "/" at the end of `dir` serves as that.
std::string AppendPath(const std::string& dir, const std::string& leaf);

// What stands before the last "/" of `path`; the whole of it when there is none. The result is "/"
// for an entry at the top and for "/" itself.
std::string ParentPath(const std::string& path);

#pragma once

#include <string>
#include <vector>

// Finds the file that a traceback refers to. Tracebacks of a board contain paths on the board, so
// if a path does not exist on this computer, it is searched for in the folders, in order. Returns
// an empty path if no file is found. [any]
std::string FindLinkedFile(const std::string& path, const std::vector<std::string>& folders);

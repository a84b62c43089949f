#pragma once

#include <string>
#include <vector>

// The file that a traceback means. A board knows its own files only, by paths of its own: those are
// looked for in the folder that holds the virtual board's files, and like all relative ones in the
// folders where the user's own stand, in this order. Empty when there is none.
std::string FindLinkedFile(const std::string& path, const std::vector<std::string>& folders);

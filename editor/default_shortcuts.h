#pragma once

#include "shortcuts.h"

#include <vector>

// The shortcuts that the plug-in's commands have until the user decides otherwise.
inline const std::vector<NamedShortcut> kDefaultShortcuts{{"QuilpRun", "F5"},
                                                          {"QuilpStop", "Shift+F5"},
                                                          {"QuilpUpload", "F6"},
                                                          {"QuilpUploadAsMain", "Shift+F6"},
                                                          {"QuilpList", "F7"}};

#pragma once

#include <string>

// The folder of a plug-in's resources, without a "/" at the end. `bundle` is the handle that the
// host hands out as PluginInterface::bundle; for a null one the result is empty.
std::string ResourcePathFromBundle(void* bundle);

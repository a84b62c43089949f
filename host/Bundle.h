#pragma once

#include <string>

// The folder of a plug-in's resources, without a "/" at the end. `bundle` is the handle that the
// host provides as PluginInterface::bundle; the result is empty if it is null. [any]
std::string ResourcePathFromBundle(void* bundle);

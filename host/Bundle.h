#pragma once

#include <string>

// The folder of a plug-in's resources, without a "/" at the end, in the form in which a command
// line takes it: a backslash precedes spaces, quotes and backslashes. `bundle` is the handle that
// the host provides as PluginInterface::bundle; the result is empty if it is null. [any]
std::string ResourcePathFromBundle(void* bundle);

#pragma once

#include <string>

// The object that PluginInterface::bundle points to: a plug-in's folder, which contains the module
// and Resources/. Owned by the host, which keeps it as long as the module is loaded.
struct PluginBundle {
    std::string path;
};

// The folder of a plug-in's resources as the system knows it, unlike ResourcePathFromBundle; empty
// if `bundle` is null. [any]
std::string ResourceFolder(void* bundle);

#pragma once

#include <string>

// What PluginInterface::bundle points to: a plug-in's folder, which holds the module and
// Resources/. Owned by the host, which keeps it as long as the module.
struct PluginBundle {
    std::string path;
};

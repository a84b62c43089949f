#include "plugin_bundle.h"

#include "Bundle.h"

std::string ResourcePathFromBundle(void* bundle)
{
    return bundle == nullptr ? std::string()
                             : static_cast<PluginBundle*>(bundle)->path + "/Resources";
}

#include "plugin_bundle.h"

#include "Bundle.h"
#include "command_line.h"

std::string ResourceFolder(void* bundle)
{
    return bundle == nullptr ? std::string()
                             : static_cast<PluginBundle*>(bundle)->path + "/Resources";
}

std::string ResourcePathFromBundle(void* bundle)
{
    return EscapeWord(ResourceFolder(bundle));
}

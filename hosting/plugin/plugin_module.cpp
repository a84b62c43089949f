#include "plugin_module.h"

#include <dlfcn.h>

#include <filesystem>

void PluginModule::Closer::operator()(void* handle) const
{
    dlclose(handle);
}

std::expected<PluginModule, std::string> PluginModule::Load(const std::string& file)
{
    std::error_code error;
    const auto path = std::filesystem::canonical(file, error);
    if (error) {
        return std::unexpected("the plug-in " + file + " does not exist");
    }
    PluginModule module;
    module.handle_.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!module.handle_) {
        return std::unexpected(path.string() + " cannot be loaded: " + dlerror());
    }
    module.main_ = reinterpret_cast<PluginMainFunction*>(dlsym(module.handle_.get(), "PluginMain"));
    module.help_ = reinterpret_cast<PluginHelpFunction*>(dlsym(module.handle_.get(), "PluginHelp"));
    if (module.main_ == nullptr || module.help_ == nullptr) {
        return std::unexpected(path.string() + " is not a plug-in");
    }
    module.bundle_ = std::make_unique<PluginBundle>(path.parent_path().string());
    return module;
}

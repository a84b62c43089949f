#pragma once

#include "PluginInterface.h"
#include "plugin_bundle.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <string>

// A loaded plug-in: its entry points and its bundle. Owned by the host, which must destroy it after
// the Runtime, so that no code of the plug-in is still running. [ui]
class PluginModule {
  public:
    // `file` is the module; its folder is the bundle. The error is a message for the user.
    static std::expected<PluginModule, std::string> Load(const std::string& file);

    // Sends a message to the plug-in and returns its reply.
    std::int32_t Main(int message, PluginInterface* pi) const { return main_(message, pi); }
    std::string Help() const { return help_(); }

    // The handle for PluginInterface::bundle; valid as long as this object.
    void* bundle() const { return bundle_.get(); }

  private:
    struct Closer {
        void operator()(void* handle) const;
    };

    PluginModule() = default;

    std::unique_ptr<PluginBundle> bundle_;
    std::unique_ptr<void, Closer> handle_;
    PluginMainFunction* main_ = nullptr;
    PluginHelpFunction* help_ = nullptr;
};

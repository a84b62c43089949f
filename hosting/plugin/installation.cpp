#include "installation.h"

#include <dlfcn.h>

#include <filesystem>

namespace fs = std::filesystem;

Installation Installation::Find()
{
    Dl_info library{};
    dladdr(reinterpret_cast<const void*>(&Installation::Find), &library);
    std::error_code error;
    fs::path folder = fs::canonical(library.dli_fname != nullptr ? library.dli_fname : "", error);
    while (folder.has_relative_path()) {
        folder = folder.parent_path();
        const auto module = folder / "quilp/Quilp.bundle/quilp.so";
        if (fs::exists(module, error)) {
            return {module.string(), (folder.parent_path() / "bin/virtual-board").string()};
        }
    }
    return {};
}

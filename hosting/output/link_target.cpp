#include "link_target.h"

#include <filesystem>

namespace {

bool IsFile(const std::filesystem::path& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

std::string FindLinkedFile(const std::string& path, const std::vector<std::string>& folders)
{
    const std::filesystem::path named(path);
    if (named.is_absolute() && IsFile(named)) {
        return path;
    }
    for (const auto& folder : folders) {
        const auto candidate = std::filesystem::path(folder) / named.relative_path();
        if (!folder.empty() && IsFile(candidate)) {
            return candidate.lexically_normal().string();
        }
    }
    return {};
}

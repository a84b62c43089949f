#include "Entry.h"

#include <filesystem>
#include <utility>

BEntry::BEntry(std::string path, bool traverse) : path_(std::move(path)), traverse_(traverse) {}

bool BEntry::IsDirectory() const
{
    std::error_code error;
    const auto status = traverse_ ? std::filesystem::status(path_, error)
                                  : std::filesystem::symlink_status(path_, error);
    return !error && std::filesystem::is_directory(status);
}

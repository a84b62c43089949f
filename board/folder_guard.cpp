#include "folder_guard.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace {

// As in flash.py.
constexpr std::uintmax_t kBlockSize = 4096;
constexpr std::uintmax_t kFlashBlocks = 4096;

constexpr std::chrono::seconds kShortestInterval{2};
constexpr int kIntervalPerDuration = 100;

std::uintmax_t BlocksOf(const std::filesystem::directory_entry& entry)
{
    std::error_code error;
    const bool isFile = !entry.is_symlink(error) && entry.is_regular_file(error);
    const std::uintmax_t size = isFile ? entry.file_size(error) : 0;
    return error ? 1 : std::max(std::uintmax_t{1}, (size + kBlockSize - 1) / kBlockSize);
}

}  // namespace

FolderGuard::FolderGuard(std::string folder) : folder_(std::move(folder))
{
    allowedBlocks_ = std::max(CountBlocks(), kFlashBlocks) + kFlashBlocks;
}

bool FolderGuard::IsOverfull()
{
    if (Clock::now() < nextCheck_) {
        return false;
    }
    const std::uintmax_t blocks = CountBlocks();
    if (blocks <= allowedBlocks_) {
        return false;
    }
    allowedBlocks_ = blocks + kFlashBlocks;
    return true;
}

std::uintmax_t FolderGuard::CountBlocks()
{
    const auto start = Clock::now();
    std::uintmax_t blocks = 0;
    std::error_code error;
    std::filesystem::recursive_directory_iterator entry(
        folder_, std::filesystem::directory_options::skip_permission_denied, error);
    for (; !error && entry != std::filesystem::end(entry); entry.increment(error)) {
        blocks += BlocksOf(*entry);
    }
    const auto now = Clock::now();
    nextCheck_ =
        now + std::max<Clock::duration>(kShortestInterval, kIntervalPerDuration * (now - start));
    return blocks;
}

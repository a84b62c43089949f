#include "process_folder.h"

#include "descriptors.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace {

constexpr std::string_view kName = "editor-";
constexpr std::string_view kLock = "lock";
constexpr int kAttempts = 10;

std::string LockPath(const std::string& folder)
{
    return folder + "/" + std::string(kLock);
}

// Whether the path still leads to the open file: its owner may have removed the folder.
bool IsStillLinked(int fd, const std::string& path)
{
    struct stat open {};
    struct stat named {};
    return fstat(fd, &open) == 0 && stat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

// Returns the descriptor that holds the lock; -1 with errno set if another process holds it. Not an
// fcntl lock: this process would release that by closing any other descriptor of the file.
int AcquireLock(const std::string& folder)
{
    const std::string path = LockPath(folder);
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) {
        return -1;
    }
    if (flock(fd, LOCK_EX | LOCK_NB) == 0) {
        if (IsStillLinked(fd, path)) {
            return fd;
        }
        errno = ENOENT;
    }
    const int error = errno;
    close(fd);
    errno = error;
    return -1;
}

bool ContainsOnlyLock(const std::string& folder)
{
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        if (it->path().filename() != kLock) {
            return false;
        }
    }
    return !error;
}

}  // namespace

std::expected<ProcessFolder, std::string> ProcessFolder::Make(const std::string& root)
{
    std::error_code error;
    std::filesystem::create_directories(root, error);
    // Retry: before the folder is locked, another process may adopt it as abandoned.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::string path = root + "/" + std::string(kName) + "XXXXXX";
        if (mkdtemp(path.data()) == nullptr) {
            break;
        }
        if (const int lock = AcquireLock(path); lock >= 0) {
            return ProcessFolder(std::move(path), lock);
        }
        const int reason = errno;
        rmdir(path.c_str());
        errno = reason;
    }
    return std::unexpected("cannot create a folder in " + root + ": " + std::strerror(errno));
}

std::optional<ProcessFolder> ProcessFolder::Adopt(const std::string& path)
{
    const int lock = AcquireLock(path);
    return lock >= 0 ? std::optional(ProcessFolder(path, lock)) : std::nullopt;
}

ProcessFolder::ProcessFolder(ProcessFolder&& other) noexcept
    : path_(std::move(other.path_)), lock_(std::exchange(other.lock_, -1))
{
}

ProcessFolder::~ProcessFolder()
{
    if (lock_ >= 0 && ContainsOnlyLock(path_)) {
        unlink(LockPath(path_).c_str());
        rmdir(path_.c_str());
    }
    CloseDescriptor(lock_);
}

bool ProcessFolder::IsLock(const std::string& name)
{
    return name == kLock;
}

bool ProcessFolder::IsProcessFolder(const std::string& name)
{
    return name.starts_with(kName);
}

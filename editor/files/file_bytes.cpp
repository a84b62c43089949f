#include "file_bytes.h"

#include "descriptors.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <tuple>

namespace {

using Path = std::filesystem::path;
using FileStatus = struct stat;

constexpr qint64 kMebibyte = 1024LL * 1024;
constexpr qint64 kChunkSize = kMebibyte;
constexpr int kMaxLinks = 40;  // Linux has the same limit.
constexpr mode_t kPermissions = 0777;
constexpr mode_t kAllModeBits = 07777;

std::unexpected<std::string> CannotRead(const std::string& path)
{
    return std::unexpected(path + " cannot be read: " + std::strerror(errno));
}

std::unexpected<std::string> CannotSave(const std::string& path)
{
    return std::unexpected(path + " cannot be saved: " + std::strerror(errno));
}

std::expected<void, std::string> RequireRegular(const std::string& path, const FileStatus& status)
{
    if (S_ISDIR(status.st_mode)) {
        return std::unexpected(path + " is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected(path + " is not a regular file");
    }
    return {};
}

// In chunks, because the size of files in /proc is unknown.
QByteArray ReadChunks(QFile& file, qint64 maxSize)
{
    QByteArray bytes;
    QByteArray chunk;
    do {
        chunk = file.read(kChunkSize);
        bytes += chunk;
    } while (!chunk.isEmpty() && bytes.size() <= maxSize);
    return bytes;
}

// A new file in the folder of the file to be saved. The destructor removes it unless it was
// renamed.
class TemporaryFile {
  public:
    TemporaryFile(const Path& folder, mode_t mode)
        : path_(folder /
                (kTemporaryPrefix + QUuid::createUuid().toString(QUuid::Id128).toStdString())),
          fd_(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode))
    {
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        CloseDescriptor(fd_);
        if (isOpen() && !renamed_) {
            unlink(path_.c_str());
        }
    }

    bool isOpen() const { return fd_ >= 0; }

    // Writes the bytes to disk. On failure returns false and sets errno.
    bool Write(const QByteArray& bytes, const std::optional<FileStatus>& old) const
    {
        if (!WriteFully(fd_, {bytes.data(), static_cast<std::size_t>(bytes.size())})) {
            return false;
        }
        if (old) {
            CopyAttributes(*old);  // After writing, which clears some mode bits.
        }
        return fsync(fd_) == 0;
    }

    // On failure returns false and sets errno.
    bool RenameTo(const Path& target)
    {
        renamed_ = std::rename(path_.c_str(), target.c_str()) == 0;
        return renamed_;
    }

  private:
    // Errors are ignored: some file systems have no owners or modes.
    void CopyAttributes(const FileStatus& old) const
    {
        const bool sameOwner = fchown(fd_, old.st_uid, old.st_gid) == 0;
        if (!sameOwner) {
            std::ignore = fchown(fd_, static_cast<uid_t>(-1), old.st_gid);
        }
        // Set-user-ID bits must not be copied to a file with another owner.
        fchmod(fd_, old.st_mode & (sameOwner ? kAllModeBits : kPermissions));
    }

    Path path_;
    int fd_;
    bool renamed_ = false;
};

// Resolves symbolic links; the target need not exist. Empty if there are too many links.
Path FollowLinks(Path path)
{
    std::error_code error;
    for (int links = 0; links < kMaxLinks; ++links) {
        const Path next = std::filesystem::read_symlink(path, error);
        if (error) {
            return path;
        }
        path = path.parent_path() / next;
    }
    return {};
}

// The status of the file to replace; none if it does not exist yet.
std::expected<std::optional<FileStatus>, std::string> StatusToReplace(const Path& target)
{
    FileStatus status{};
    if (stat(target.c_str(), &status) != 0) {
        return errno == ENOENT ? std::expected<std::optional<FileStatus>, std::string>()
                               : CannotSave(target);
    }
    if (const auto regular = RequireRegular(target, status); !regular) {
        return std::unexpected(regular.error());
    }
    if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        return CannotSave(target);
    }
    return status;
}

// Makes the renaming durable, if the file system supports that.
void SyncFolder(const Path& folder)
{
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

}  // namespace

std::expected<QByteArray, std::string> ReadFileBytes(const std::string& path, qint64 maxSize)
{
    FileStatus status{};
    if (stat(path.c_str(), &status) != 0) {
        return CannotRead(path);
    }
    if (const auto regular = RequireRegular(path, status); !regular) {
        return std::unexpected(regular.error());
    }
    // O_NONBLOCK, because a FIFO may have replaced the file since the check.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        return CannotRead(path);
    }
    QFile file;
    file.open(fd, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    QByteArray bytes = status.st_size <= maxSize ? ReadChunks(file, maxSize) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        return std::unexpected(path + " cannot be read: " + file.errorString().toStdString());
    }
    if (std::max<qint64>(status.st_size, bytes.size()) > maxSize) {
        return std::unexpected(path + " is larger than " + std::to_string(maxSize / kMebibyte) +
                               " MiB");
    }
    return bytes;
}

std::expected<void, std::string> SaveAtomically(const std::string& path, const QByteArray& bytes)
{
    const Path target = FollowLinks(path);
    if (target.empty()) {
        errno = ELOOP;
        return CannotSave(path);
    }
    const auto old = StatusToReplace(target);
    if (!old) {
        return std::unexpected(old.error());
    }
    const Path folder = target.has_parent_path() ? target.parent_path() : ".";
    // The replacement of a private file must be private from the beginning.
    TemporaryFile temporary(folder, *old ? S_IRUSR | S_IWUSR : 0666);
    if (!temporary.isOpen()) {
        return std::unexpected(target.string() + " cannot be saved: cannot create a file in " +
                               folder.string() + ": " + std::strerror(errno));
    }
    if (!temporary.Write(bytes, *old) || !temporary.RenameTo(target)) {
        return CannotSave(target);
    }
    SyncFolder(folder);
    return {};
}

std::expected<std::string, std::string> SetAside(const std::string& path)
{
    namespace fs = std::filesystem;
    std::string name = path + ".unreadable";
    std::error_code ignored;
    for (int number = 2; fs::exists(fs::symlink_status(name, ignored)); ++number) {
        name = path + ".unreadable." + std::to_string(number);
    }
    if (std::rename(path.c_str(), name.c_str()) != 0) {
        return std::unexpected(path + " cannot be renamed: " + std::strerror(errno));
    }
    return name;
}

std::string SetAsideWithReport(const std::string& problem, const std::string& path)
{
    const auto aside = SetAside(path);
    return problem + ". " + (aside ? "The file was renamed to " + *aside : aside.error()) + ".";
}

FileStamp FileStamp::Of(const std::string& path)
{
    const QFileInfo info(QString::fromStdString(path));
    return info.exists() ? FileStamp{info.lastModified().toMSecsSinceEpoch(), info.size()}
                         : FileStamp();
}

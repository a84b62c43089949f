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

constexpr qint64 kPiece = 1024LL * 1024;
constexpr int kMostLinks = 40;  // As the system's own limit.
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

// In pieces: the files of /proc do not tell their size.
QByteArray ReadPieces(QFile& file, qint64 largest)
{
    QByteArray bytes;
    QByteArray piece;
    do {
        piece = file.read(kPiece);
        bytes += piece;
    } while (!piece.isEmpty() && bytes.size() <= largest);
    return bytes;
}

// A new file beside the one to be saved. Removed unless it takes that one's place.
class Temporary {
  public:
    Temporary(const Path& folder, mode_t mode)
        : path_(folder /
                (kTemporaryPrefix + QUuid::createUuid().toString(QUuid::Id128).toStdString())),
          fd_(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode))
    {
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary()
    {
        CloseDescriptor(fd_);
        if (isThere() && !tookPlace_) {
            unlink(path_.c_str());
        }
    }

    bool isThere() const { return fd_ >= 0; }

    // False, with errno set, when the bytes cannot be brought to the disk.
    bool Fill(const QByteArray& bytes, const std::optional<FileStatus>& old) const
    {
        if (!WriteFully(fd_, {bytes.data(), static_cast<std::size_t>(bytes.size())})) {
            return false;
        }
        if (old) {
            MakeLike(*old);  // Not before: writing takes mode bits away.
        }
        return fsync(fd_) == 0;
    }

    // False, with errno set, when it cannot.
    bool TakePlaceOf(const Path& target)
    {
        tookPlace_ = std::rename(path_.c_str(), target.c_str()) == 0;
        return tookPlace_;
    }

  private:
    // A file system without owners or modes refuses, which harms nobody.
    void MakeLike(const FileStatus& old) const
    {
        const bool sameOwner = fchown(fd_, old.st_uid, old.st_gid) == 0;
        if (!sameOwner) {
            std::ignore = fchown(fd_, static_cast<uid_t>(-1), old.st_gid);
        }
        // A program that runs with its owner's rights must not do so with another's.
        fchmod(fd_, old.st_mode & (sameOwner ? kAllModeBits : kPermissions));
    }

    Path path_;
    int fd_;
    bool tookPlace_ = false;
};

// The file that links lead to, which need not exist. Empty when they lead in a circle.
Path FollowLinks(Path path)
{
    std::error_code error;
    for (int links = 0; links < kMostLinks; ++links) {
        const Path next = std::filesystem::read_symlink(path, error);
        if (error) {
            return path;
        }
        path = path.parent_path() / next;
    }
    return {};
}

// The status of a file that may be replaced; none when there is no file yet.
std::expected<std::optional<FileStatus>, std::string> OldStatus(const Path& target)
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

// So that the new name outlives a power failure, where the file system can promise that.
void SyncFolder(const Path& folder)
{
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

}  // namespace

std::expected<QByteArray, std::string> ReadFileBytes(const std::string& path, qint64 largest)
{
    FileStatus status{};
    if (stat(path.c_str(), &status) != 0) {
        return CannotRead(path);
    }
    if (const auto regular = RequireRegular(path, status); !regular) {
        return std::unexpected(regular.error());
    }
    // Without waiting, should a FIFO have taken the file's place meanwhile.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        return CannotRead(path);
    }
    QFile file;
    file.open(fd, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    QByteArray bytes = status.st_size <= largest ? ReadPieces(file, largest) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        return std::unexpected(path + " cannot be read: " + file.errorString().toStdString());
    }
    if (std::max<qint64>(status.st_size, bytes.size()) > largest) {
        return std::unexpected(path + " is larger than " + std::to_string(largest / kPiece) +
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
    const auto old = OldStatus(target);
    if (!old) {
        return std::unexpected(old.error());
    }
    const Path folder = target.has_parent_path() ? target.parent_path() : ".";
    // What takes the place of a private file is private from the beginning.
    Temporary temporary(folder, *old ? S_IRUSR | S_IWUSR : 0666);
    if (!temporary.isThere()) {
        return std::unexpected(target.string() + " cannot be saved: no file can be made in " +
                               folder.string() + ": " + std::strerror(errno));
    }
    if (!temporary.Fill(bytes, *old) || !temporary.TakePlaceOf(target)) {
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
        return std::unexpected(path + " cannot be set aside: " + std::strerror(errno));
    }
    return name;
}

std::string SetAsideWithReport(const std::string& problem, const std::string& path)
{
    const auto aside = SetAside(path);
    return problem + "; " + (aside ? "the file was set aside as " + *aside : aside.error()) + ".";
}

FileStamp FileStamp::Of(const std::string& path)
{
    const QFileInfo info(QString::fromStdString(path));
    return info.exists() ? FileStamp{info.lastModified().toMSecsSinceEpoch(), info.size()}
                         : FileStamp();
}

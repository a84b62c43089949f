#include "file_save.h"

#include "descriptors.h"

#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <tuple>
#include <utility>

namespace {

using Path = std::filesystem::path;
using FileStatus = struct stat;
using Kind = SaveError::Kind;

constexpr int kMaxLinks = 40;  // Linux has the same limit.
constexpr mode_t kPermissions = 0777;
constexpr mode_t kAllModeBits = 07777;

std::unexpected<SaveError> CannotSave(const std::string& path, const std::string& detail = {})
{
    return std::unexpected(SaveError{path + " cannot be saved: " + detail + std::strerror(errno)});
}

// The error when an existing file that may be written cannot be replaced by another.
std::unexpected<SaveError> CannotReplace(const std::string& path, const std::string& detail = {})
{
    constexpr std::array kReasons{EACCES, EPERM, EROFS, EBUSY, EXDEV};
    const bool isPermanent = std::ranges::find(kReasons, errno) != kReasons.end();
    auto error = CannotSave(path, detail);
    error.error().kind = isPermanent ? Kind::NotReplaceable : Kind::Failed;
    return error;
}

std::optional<FileStamp> StampOf(int fd)
{
    FileStatus status{};
    return fstat(fd, &status) == 0 ? std::optional(FileStamp::From(status)) : std::nullopt;
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

    // The file's after it was written, which renaming does not change.
    std::optional<FileStamp> Stamp() const { return StampOf(fd_); }

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
std::expected<std::optional<FileStatus>, SaveError> StatusToReplace(const Path& target)
{
    FileStatus status{};
    if (stat(target.c_str(), &status) != 0) {
        return errno == ENOENT ? std::expected<std::optional<FileStatus>, SaveError>()
                               : CannotSave(target);
    }
    if (const auto regular = RequireRegular(target, status); !regular) {
        return std::unexpected(SaveError{regular.error()});
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

// Replaces the whole content. Syncs it, too: there is no other version on disk.
bool Overwrite(int fd, const QByteArray& bytes)
{
    return WriteFully(fd, {bytes.data(), static_cast<std::size_t>(bytes.size())}) &&
           ftruncate(fd, bytes.size()) == 0 && fsync(fd) == 0;
}

}  // namespace

std::expected<FileStamp, SaveError> ReplaceFile(const std::string& path, const QByteArray& bytes,
                                                FolderSync sync)
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
    const auto fail = [&](const std::string& detail = {}) {
        return *old ? CannotReplace(target, detail) : CannotSave(target, detail);
    };
    const Path folder = target.has_parent_path() ? target.parent_path() : ".";
    // The replacement of a private file must be private from the beginning.
    TemporaryFile temporary(folder, *old ? S_IRUSR | S_IWUSR : 0666);
    if (!temporary.isOpen()) {
        return fail("cannot create a file in " + folder.string() + ": ");
    }
    if (!temporary.Write(bytes, *old)) {
        return CannotSave(target);
    }
    const auto stamp = temporary.Stamp();
    if (!stamp || !temporary.RenameTo(target)) {
        return fail();
    }
    if (!*old || sync == FolderSync::Always) {
        SyncFolder(folder);
    }
    return *stamp;
}

std::expected<void, std::string> SaveAtomically(const std::string& path, const QByteArray& bytes,
                                                FolderSync sync)
{
    const auto saved = ReplaceFile(path, bytes, sync);
    return saved ? std::expected<void, std::string>() : std::unexpected(saved.error().message);
}

std::expected<FileStamp, SaveError> WriteInPlace(const std::string& path, const QByteArray& bytes)
{
    const auto old = StatusToReplace(path);
    if (!old) {
        return std::unexpected(old.error());
    }
    // O_NONBLOCK, because a FIFO may have replaced the file since the check.
    const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        return CannotSave(path);
    }
    const bool isWritten = Overwrite(fd, bytes);
    const int error = errno;
    const auto stamp = StampOf(fd);
    CloseDescriptor(fd);
    errno = error;
    return isWritten && stamp ? std::expected<FileStamp, SaveError>(*stamp) : CannotSave(path);
}

std::expected<SavedFile, SaveError> SaveFile(const SaveRequest& request)
{
    if (request.known) {
        const auto now = FileStamp::Of(request.path);
        if (now != *request.known && now != FileStamp()) {
            return std::unexpected(SaveError{{}, Kind::Changed});
        }
    }
    const auto saved = request.inPlace ? WriteInPlace(request.path, request.bytes)
                                       : ReplaceFile(request.path, request.bytes);
    if (!saved) {
        return std::unexpected(saved.error());
    }
    return SavedFile{*saved, FileIdentity(request.path)};
}

#include "file_bytes.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

using FileStatus = struct stat;

constexpr qint64 kMebibyte = 1024LL * 1024;
constexpr qint64 kChunkSize = kMebibyte;

std::unexpected<std::string> CannotRead(const std::string& path)
{
    return std::unexpected(path + " cannot be read: " + std::strerror(errno));
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

}  // namespace

std::expected<void, std::string> RequireRegular(const std::string& path, const struct stat& status)
{
    if (S_ISDIR(status.st_mode)) {
        return std::unexpected(path + " is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        return std::unexpected(path + " is not a regular file");
    }
    return {};
}

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

FileStamp FileStamp::From(const struct stat& status)
{
    constexpr qint64 kMilliseconds = 1000;
    constexpr qint64 kNanoseconds = 1'000'000;
#ifdef __APPLE__
    const timespec& modified = status.st_mtimespec;
#else
    const timespec& modified = status.st_mtim;
#endif
    return {modified.tv_sec * kMilliseconds + modified.tv_nsec / kNanoseconds, status.st_size};
}

FileStamp FileStamp::Of(const std::string& path)
{
    FileStatus status{};
    return stat(path.c_str(), &status) == 0 ? From(status) : FileStamp();
}

std::string FileIdentity(const std::string& path)
{
    std::error_code error;
    const auto canonical = std::filesystem::canonical(path, error);
    return error ? std::filesystem::absolute(path, error).lexically_normal().string()
                 : canonical.string();
}

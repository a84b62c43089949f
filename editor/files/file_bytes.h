#pragma once

#include <QByteArray>

#include <sys/stat.h>

#include <expected>
#include <string>

// Reads whole files. Errors are messages for the user. [any]

inline constexpr qint64 kMaxDocumentSize = 64LL * 1024 * 1024;  // bytes

// The bytes of a regular file. Other kinds of files are not opened, because a FIFO could block the
// caller, and opening a serial device could reset it.
std::expected<QByteArray, std::string> ReadFileBytes(const std::string& path,
                                                     qint64 maxSize = kMaxDocumentSize);

// Used to detect changes of a file. The values are -1 if the file does not exist.
struct FileStamp {
    qint64 modified = -1;  // Milliseconds since 1970.
    qint64 size = -1;      // Bytes.

    static FileStamp Of(const std::string& path);
    static FileStamp From(const struct stat& status);
    bool operator==(const FileStamp&) const = default;
};

// Whether this is the status of a regular file. The path is for the error.
std::expected<void, std::string> RequireRegular(const std::string& path, const struct stat& status);

// The canonical path, by which a file is recognised under another name. The full path if the file
// does not exist.
std::string FileIdentity(const std::string& path);

// Renames an unusable file to NAME.unreadable, NAME.unreadable.2 and so on, so that it is not
// overwritten. Returns the new name.
std::expected<std::string, std::string> SetAside(const std::string& path);

// Does the same, and returns a message for the user: the problem, and the new name or the error.
std::string SetAsideWithReport(const std::string& problem, const std::string& path);

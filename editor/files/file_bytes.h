#pragma once

#include <QByteArray>

#include <expected>
#include <string>

// Reads and writes whole files. Errors are messages for the user. [any]

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
    bool operator==(const FileStamp&) const = default;
};

// The prefix of the names of SaveAtomically's temporary files. A process that is killed while it
// saves leaves such a file.
inline constexpr const char* kTemporaryPrefix = ".quilp-";

// Writes a file so that at any time, even after a crash or a power failure, it contains either all
// of the old bytes or all of the new ones. If an error occurs, the file is unchanged.
//
// Symbolic links are followed. An existing file keeps its mode, and its owner and group if this
// user may set them; other hard links to it keep the old bytes, and access-control lists are lost.
// The mode of a new file is determined by the umask. A file is not replaced if this user may not
// write it, or if no temporary file can be created in its folder.
std::expected<void, std::string> SaveAtomically(const std::string& path, const QByteArray& bytes);

// Renames an unusable file to NAME.unreadable, NAME.unreadable.2 and so on, so that it is not
// overwritten. Returns the new name.
std::expected<std::string, std::string> SetAside(const std::string& path);

// Does the same, and returns a message for the user: the problem, and the new name or the error.
std::string SetAsideWithReport(const std::string& problem, const std::string& path);

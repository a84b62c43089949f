#pragma once

#include <QByteArray>

#include <expected>
#include <string>

// Whole files, read and written at once. Errors are sentences for the user. Used on any thread.

inline constexpr qint64 kMaxDocumentSize = 64LL * 1024 * 1024;  // bytes

// The bytes of a regular file. Opens nothing else, so that neither a FIFO can hold the caller up
// nor a serial line be reset.
std::expected<QByteArray, std::string> ReadFileBytes(const std::string& path,
                                                     qint64 largest = kMaxDocumentSize);

// What changes when somebody writes a file; -1 when there is none.
struct FileStamp {
    qint64 modified = -1;  // Milliseconds since 1970.
    qint64 size = -1;      // Bytes.

    static FileStamp Of(const std::string& path);
    bool operator==(const FileStamp&) const = default;
};

// What the names of SaveAtomically's temporary files begin with: a process that is killed while it
// saves leaves one behind.
inline constexpr const char* kTemporaryPrefix = ".quilp-";

// Writes a file so that at any time, also after a crash or a power failure, either all of the old
// bytes or all of the new are there. On an error the file is as it was.
//
// A symbolic link stays, and what it leads to is written. An existing file keeps its mode, and its
// owner and group where this user may set them; other hard links to it keep the old bytes, and
// access-control lists are not kept. A new file gets the mode that the umask leaves. A file that
// this user may not write is not replaced, nor is one in a folder where no temporary file can be
// made.
std::expected<void, std::string> SaveAtomically(const std::string& path, const QByteArray& bytes);

// Renames a file that cannot be used, so that it is not lost: to NAME.unreadable, or
// NAME.unreadable.2 and so on, which is the answer.
std::expected<std::string, std::string> SetAside(const std::string& path);

// The same with a sentence for the user that consists of the problem and what became of the file.
std::string SetAsideWithReport(const std::string& problem, const std::string& path);

#pragma once

#include "file_bytes.h"

#include <QByteArray>

#include <expected>
#include <optional>
#include <string>

// Writes whole files. [any]

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
//
// Syncing the folder makes the function wait for the disk twice. Without that for a replaced file,
// a power failure soon afterwards may bring the old bytes back.
enum class FolderSync { Always, ForNewFiles };
std::expected<void, std::string> SaveAtomically(const std::string& path, const QByteArray& bytes,
                                                FolderSync sync = FolderSync::Always);

struct SaveError {
    enum class Kind {
        Failed,
        Changed,         // Another program has changed the file.
        NotReplaceable,  // Only WriteInPlace can save it: it is a mount point, for example.
    };
    std::string message;  // For the user; empty for Changed.
    Kind kind = Kind::Failed;
};

// Does the same, and returns the stamp of the written file. It is taken before the file gets its
// name, so that a change by another program directly afterwards is noticed.
std::expected<FileStamp, SaveError> ReplaceFile(const std::string& path, const QByteArray& bytes,
                                                FolderSync sync = FolderSync::Always);

// Overwrites an existing file. An error or a crash leaves a damaged file.
std::expected<FileStamp, SaveError> WriteInPlace(const std::string& path, const QByteArray& bytes);

// How to save a document.
struct SaveRequest {
    std::string path;
    QByteArray bytes;
    std::optional<FileStamp> known;  // If the file's is another, it is not overwritten.
    bool inPlace = false;
};
struct SavedFile {
    FileStamp stamp;
    std::string identity;  // See FileIdentity.
};
std::expected<SavedFile, SaveError> SaveFile(const SaveRequest& request);

#pragma once

#include "document_file.h"
#include "process_folder.h"

#include <QByteArray>

#include <expected>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// The unsaved text of a document.
struct RecoveryCopy {
    std::string path;  // The document's; empty if it has none yet.
    TextEncoding encoding = TextEncoding::Utf8;
    QByteArray text;       // UTF-8, whatever the document's encoding is.
    FileStamp stamp = {};  // Of the file when the document last read or saved it.
};

// A copy that an editor left when it crashed.
struct OrphanedCopy {
    std::string id;  // To be passed to Keep and Discard of the store that found the copy.
    RecoveryCopy copy;
};

// Copies of unsaved text on disk, which are kept when the program crashes. They are stored in a
// folder of this process, which other editors do not touch while this one is running. Not
// thread-safe.
class RecoveryStore {
  public:
    // `root` is common to all of a user's editors. Nothing is created there before the first copy.
    explicit RecoveryStore(std::string root) : root_(std::move(root)) {}
    RecoveryStore(const RecoveryStore&) = delete;
    RecoveryStore& operator=(const RecoveryStore&) = delete;
    // Copies that were not discarded remain for the next editor.
    ~RecoveryStore() = default;

    // Writes a document's copy to disk, replacing the previous one. The id is any text that
    // identifies the document. The error is a message for the user.
    std::expected<void, std::string> Keep(const std::string& id, const RecoveryCopy& copy);

    // Removes the document's copy, if there is one.
    void Discard(const std::string& id);

    // Returns the copies of editors that have exited since the last call. They belong to this store
    // from now on, and to the next editor if this one does not discard them. Corrupted copies are
    // skipped and remain on disk.
    std::vector<OrphanedCopy> Orphans();

  private:
    std::expected<std::string, std::string> NewFile();
    std::vector<OrphanedCopy> ReadCopies(const std::string& folder);

    const std::string root_;
    std::list<ProcessFolder> adopted_;
    std::optional<ProcessFolder> own_;
    int fileCount_ = 0;
    std::map<std::string, std::string> files_;  // By id.
};

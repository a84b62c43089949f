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

// The text of a document that is not saved.
struct RecoveryCopy {
    std::string path;  // The document's; empty when it has none yet.
    TextEncoding encoding = TextEncoding::Utf8;
    QByteArray text;       // UTF-8, whatever the document's encoding is.
    FileStamp stamp = {};  // Of the file as the text's writer knew it.
};

// A copy that another editor left behind.
struct OrphanedCopy {
    std::string id;  // For Keep and Discard of the store that found it.
    RecoveryCopy copy;
};

// Copies of unsaved text on the disk, which survive the program's end. They lie in a folder of this
// process's own, and belong to no other editor while this one lives. Used on the user-interface
// thread.
class RecoveryStore {
  public:
    // `root` is the same for all of a user's editors. Nothing is made there before the first copy.
    explicit RecoveryStore(std::string root) : root_(std::move(root)) {}
    RecoveryStore(const RecoveryStore&) = delete;
    RecoveryStore& operator=(const RecoveryStore&) = delete;
    // Copies that were not discarded stay behind for the next editor.
    ~RecoveryStore() = default;

    // Writes the document's copy in place of the one before, waiting for the disk. The id is any
    // text that stands for the document. The error is a sentence.
    std::expected<void, std::string> Keep(const std::string& id, const RecoveryCopy& copy);

    // Removes the document's copy. Without one it does nothing.
    void Discard(const std::string& id);

    // The copies of editors that have ended since the last call. They belong to this store from
    // here on, and to the next editor if this one ends without discarding them. A damaged copy is
    // left where it is.
    std::vector<OrphanedCopy> Orphans();

  private:
    std::expected<std::string, std::string> NewFile();
    std::vector<OrphanedCopy> TakeCopies(const std::string& folder);

    const std::string root_;
    std::list<ProcessFolder> adopted_;
    std::optional<ProcessFolder> own_;
    int made_ = 0;
    std::map<std::string, std::string> files_;  // By id.
};

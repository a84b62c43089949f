#pragma once

#include "recovery_keeper.h"

#include <QStringList>
#include <QTimer>

#include <set>
#include <string>
#include <vector>

class DocumentPage;
class DocumentTabs;

// Keeps recovery copies of the unsaved documents, and opens those that a crashed editor left. [ui]
class RecoveryCopies {
  public:
    // Copies are stored under `root`. `tabs` must outlive this object.
    RecoveryCopies(const std::string& root, DocumentTabs& tabs);

    // The document's text differs from its copy, which is replaced soon.
    void TextChanged(DocumentPage& page);
    // The document needs no copy until its text changes: it was loaded, saved or closed.
    void Forget(DocumentPage& page) { changed_.erase(&page); }
    void Discard(DocumentPage& page);

    // Stores copies of the documents that changed since their last copies. Does not wait for the
    // disk.
    void Keep();

    // Stores a copy of the document, and waits for the disk. Returns false if that failed, which
    // has then been reported, or took too long.
    bool KeepNow(DocumentPage& page);

    // Searches for texts that a crashed editor left, and returns their names.
    QStringList FindRecoverable();
    // Opens or deletes the texts that FindRecoverable found.
    void Recover();
    void DiscardRecovered();

  private:
    void CopyFailed(const std::string& id, const QString& error);

    DocumentTabs& tabs_;
    RecoveryKeeper keeper_;
    QTimer timer_;
    std::set<DocumentPage*> changed_;  // Since their last copies.
    QString copyError_;                // The last error that was reported.
    std::vector<OrphanedCopy> orphans_;
};

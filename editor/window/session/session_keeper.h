#pragma once

#include "editor_parts.h"
#include "session.h"

#include <QStringList>

#include <string>

struct UserFolders;

// Saves the state of the editor, and restores it at the next start. [ui]
class SessionKeeper {
  public:
    // `shortcuts` must outlive this object.
    SessionKeeper(const UserFolders& folders, Shortcuts& shortcuts, const EditorParts& parts);

    // Restores everything except the documents. Errors are reported in the window.
    void Restore();
    void ReopenDocuments();

    // Returns the errors as messages for the user.
    QStringList Save();

  private:
    Session Current() const;
    void RestoreWorksheet();

    std::string sessionPath_;
    std::string worksheetPath_;
    Shortcuts& shortcuts_;
    EditorParts parts_;
    Session last_;  // As loaded.
};

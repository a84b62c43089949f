#pragma once

#include "editor_parts.h"
#include "session.h"

#include <QStringList>

#include <string>

struct UserFolders;

// Restores what the editor looked like when it last exited, and saves it. Used on the
// user-interface thread.
class SessionKeeper {
  public:
    // `shortcuts` must outlive this object.
    SessionKeeper(const UserFolders& folders, Shortcuts& shortcuts, const EditorParts& parts);

    // Everything except the documents. Problems are reported in the window.
    void Restore();
    void OpenLastDocuments();

    // What could not be saved, as sentences.
    QStringList Save();

  private:
    Session Current() const;
    void RestoreWorksheet();

    std::string sessionPath_;
    std::string worksheetPath_;
    Shortcuts& shortcuts_;
    EditorParts parts_;
    Session last_;  // As it was loaded.
};

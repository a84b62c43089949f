#pragma once

#include "editor_parts.h"
#include "file_worker.h"
#include "session.h"

#include <QStringList>
#include <QTimer>

#include <expected>
#include <functional>
#include <string>

struct UserFolders;

// Saves the state of the editor about a second after each change, so that a crash loses little, and
// restores it at the next start. [ui]
class SessionKeeper {
  public:
    // `shortcuts` must outlive this object.
    SessionKeeper(const UserFolders& folders, Shortcuts& shortcuts, const EditorParts& parts);

    // Restores everything except the documents. Errors are reported in the window.
    void Restore();
    void ReopenDocuments();

    // Saves for the last time, and waits for the disk a few seconds. Returns the errors as messages
    // for the user.
    QStringList SaveAtExit();

  private:
    using Save = std::function<std::expected<void, std::string>()>;

    Session Current() const;
    void RestoreBoard();
    void RestoreWorksheet();
    void SaveChanges();
    void SaveChangedWorksheet();
    void SaveWorksheet();
    void SaveSettings(const Session& session);
    void Do(const std::string& key, Save save);
    void Fail(const QString& problem);

    std::string sessionPath_;
    std::string worksheetPath_;
    Shortcuts& shortcuts_;
    EditorParts parts_;
    Session last_;  // As loaded or last saved.
    Shortcuts lastShortcuts_;
    bool isSheetEdited_ = false;  // Since it was last saved, apart from output.
    long savedLength_ = 0;        // Of the worksheet, in bytes.
    long lastLength_ = 0;
    int secondsUnsaved_ = 0;
    QTimer timer_;
    bool isExiting_ = false;
    QStringList problems_;  // That were reported, or in SaveAtExit those to return.
    FileWorker worker_;
};

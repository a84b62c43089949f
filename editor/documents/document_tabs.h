#pragma once

#include "document_page.h"
#include "recovery_keeper.h"

#include <QStringList>
#include <QTabWidget>
#include <QTimer>

#include <set>
#include <string>
#include <vector>

// The open documents, one in each tab, with the dialogs for saving and closing them. [ui]
class DocumentTabs final : public QTabWidget {
    Q_OBJECT

  public:
    // Copies of unsaved text are stored under `recoveryRoot`.
    DocumentTabs(const std::string& recoveryRoot, QWidget* parent);
    ~DocumentTabs() override;

    // Null when no document is open.
    DocumentPage* FrontPage() const { return PageAt(currentIndex()); }
    Document* Front() const;
    // The paths of the documents that have a file, in the order of the tabs.
    QStringList Paths() const;

    void New();
    // Opens a file, or brings it to the front if it is open already. A file with a line that is too
    // long to edit smoothly (document_file.h) is not opened unless that is accepted; LineTooLong is
    // emitted instead. Returns whether the file is open.
    enum class LongLines { Refuse, Accept };
    bool Open(const QString& path, LongLines longLines = LongLines::Refuse);

    // Return false if a document was not saved, which has then been reported to the user; true if
    // there is no document.
    bool SaveFront();
    bool SaveFrontAs();
    bool SaveAll();

    // Returns false if the user cancelled.
    bool Close(int index);
    // Asks about all unsaved documents without closing any. Returns false if the user cancelled.
    bool ConfirmCloseAll();
    // Closes all documents without asking.
    void CloseAll();

    // Stores recovery copies of the unsaved documents that changed since their last copies. Does
    // not wait for the disk.
    void KeepCopies();

    // Checks whether other programs have changed the files.
    void CheckDisk();

    // Searches for texts that a crashed editor left, and returns their names.
    QStringList FindRecoverable();
    // Opens or deletes the texts that FindRecoverable found.
    void Recover();
    void DiscardRecovered();

  Q_SIGNALS:
    // Another document is in front, or its name or state has changed.
    void FrontChanged();
    void Opened(const QString& path);
    // The file was not opened because of this line, counted from 1.
    void LineTooLong(const QString& path, qint64 line);
    // A message for the user.
    void Failed(const QString& message);
    void FilesDropped(const QStringList& paths);

  private:
    DocumentPage* PageAt(int index) const;
    int IndexOf(const QString& path) const;
    DocumentPage& AddPage();
    QString UnusedName() const;
    void RemovePage(int index);
    void ShowState(DocumentPage& page);
    bool Save(DocumentPage& page);
    bool SaveAs(DocumentPage& page);
    bool Write(DocumentPage& page, const QString& path);
    bool SaveAsUtf8(DocumentPage& page, const QString& path, const QString& problem);
    bool ConfirmClose(DocumentPage& page);
    void CopyFailed(const std::string& id, const QString& error);
    void TextChanged(DocumentPage& page);

    RecoveryKeeper recovery_;
    QTimer recoveryTimer_;
    std::set<DocumentPage*> modifiedPages_;  // Changed since the last recovery copy.
    QString copyError_;                      // The last error reported for a recovery copy.
    std::vector<OrphanedCopy> orphans_;
    int lastRecoveryId_ = 0;
};

#pragma once

#include "document_page.h"
#include "document_saver.h"
#include "recovery_copies.h"

#include <QStringList>
#include <QTabWidget>

#include <string>

// The open documents, one in each tab. [ui]
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

    // Returns false if the user cancelled.
    bool Close(int index);
    // Closes the other documents until the user cancels.
    void CloseOthers(int index);
    // Closes all documents without asking.
    void CloseAll();

    // Checks whether other programs have changed the files. Does not wait for the disk.
    void CheckDisk();

    DocumentSaver& saver() { return saver_; }
    RecoveryCopies& copies() { return copies_; }

    // For the parts above.
    DocumentPage* PageAt(int index) const;
    // The document of this file; -1 if it is not open.
    int IndexOf(const QString& path) const;
    DocumentPage& AddPage();
    // Shows the document's name, and whether it has unsaved changes.
    void ShowState(DocumentPage& page);

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
    QString UnusedName() const;
    void RemovePage(int index);
    void AddTabMenu();
    void CopyPath(int index);
    void ShowInFolder(int index);
    void CheckDisk(DocumentPage& page);
    void FollowDisk(DocumentPage& page, const FileStamp& now);

    DocumentSaver saver_;
    RecoveryCopies copies_;
    FileWorker checks_;
    int lastRecoveryId_ = 0;
};

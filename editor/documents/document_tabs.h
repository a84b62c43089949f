#pragma once

#include "document_page.h"
#include "recovery_keeper.h"

#include <QStringList>
#include <QTabWidget>
#include <QTimer>

#include <set>
#include <string>
#include <vector>

// The open documents, one in each tab. Asks the user what has to be asked. Used on the
// user-interface thread.
class DocumentTabs final : public QTabWidget {
    Q_OBJECT

  public:
    // Copies of unsaved text are kept under `recoveryRoot`.
    DocumentTabs(const std::string& recoveryRoot, QWidget* parent);
    ~DocumentTabs() override;

    // Null when no document is open.
    DocumentPage* FrontPage() const { return PageAt(currentIndex()); }
    Document* Front() const;
    // Of the documents that have a file, in the order of the tabs.
    QStringList Paths() const;

    void New();
    // A line that is slow to edit (document_file.h) is told by TooSlow unless it is accepted. Also
    // when the file is open already. False when it is not.
    enum class LongLines { Refuse, Accept };
    bool Open(const QString& path, LongLines longLines = LongLines::Refuse);

    // False when a document is not saved in the end, which the user knows by then. Without any
    // there is nothing to save, which is well.
    bool SaveFront();
    bool SaveFrontAs();
    bool SaveAll();

    // False when the user would rather keep it open.
    bool Close(int index);
    // Asks about all of them, and closes none. False when one is to stay open.
    bool MayCloseAll();
    // Unasked.
    void CloseAll();

    // Keeps a copy of everything unsaved that changed since the last one. Does not wait for the
    // disk.
    void KeepCopies();

    // Looks whether other programs have written the files.
    void CheckDisk();

    // The names of the texts that a crash left behind, found now.
    QStringList FindRecovered();
    // Opens them, or throws them away.
    void Recover();
    void DiscardRecovered();

  Q_SIGNALS:
    // Another document is in front, or it got another name or state.
    void FrontChanged();
    void Opened(const QString& path);
    // The file's number of a line, from 1, that it was not opened for.
    void TooSlow(const QString& path, qint64 line);
    // A sentence for the user.
    void Failed(const QString& message);
    void FilesDropped(const QStringList& paths);

  private:
    DocumentPage* PageAt(int index) const;
    int IndexOf(const QString& path) const;
    DocumentPage& AddPage();
    QString FreeName() const;
    void RemovePage(int index);
    void ShowState(DocumentPage& page);
    bool Save(DocumentPage& page);
    bool SaveAs(DocumentPage& page);
    bool Write(DocumentPage& page, const QString& path);
    bool SaveAsUtf8(DocumentPage& page, const QString& path, const QString& problem);
    bool MayClose(DocumentPage& page);
    void CopyFailed(const std::string& id, const QString& error);
    void TextChanged(DocumentPage& page);

    RecoveryKeeper recovery_;
    QTimer recoveryTimer_;
    std::set<DocumentPage*> uncopied_;  // Changed since the last copy.
    QString copyError_;                 // The last one.
    std::vector<OrphanedCopy> orphans_;
    int made_ = 0;
};

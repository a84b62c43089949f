#pragma once

#include "board_monitor.h"
#include "board_tool.h"
#include "document_page.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

#include <deque>
#include <expected>
#include <memory>
#include <string>

class Document;
class DocumentTabs;
class QTemporaryDir;
struct BoardResult;

// The documents that are files of a board: opens them in tabs, and saves them on the board. A save
// goes to the board from which the document was opened, and only if the file there is still the one
// that was opened; otherwise the user is asked, by a message above the text. [ui]
class BoardDocuments final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one.
    BoardDocuments(DocumentTabs& tabs, BoardTool& tool, const BoardMonitor& board, QObject* parent);
    ~BoardDocuments() override;

    // Opens a file of the board, or brings it to the front if it is open already. Errors are
    // reported by the tabs' signal Failed.
    void Open(const std::string& path);

    // Starts saving, and waits for the board a few seconds if `waits`. Returns whether the document
    // is saved. An error is shown above the text.
    bool Save(DocumentPage& page, bool waits);

    // Writes the text to the document's copy on this computer, which the tool then runs. The error
    // is a message for the user.
    static std::expected<void, std::string> WriteCopy(Document& document);

  Q_SIGNALS:
    // A save has succeeded or failed.
    void SaveEnded();

  private:
    void Show(const std::string& path, const std::string& copy);
    DocumentPage* FindPage(const std::string& path) const;
    std::expected<std::string, std::string> NewCopy(const std::string& path);
    void StartSave(DocumentPage& page);
    void StartNextSave();
    void Compare(DocumentPage& page, const QByteArray& bytes);
    void EndCompare(DocumentPage& page, const QByteArray& bytes, const BoardResult& result);
    void Transfer(DocumentPage& page, const QByteArray& bytes);
    void EndSave(DocumentPage& page, const QByteArray& bytes);
    void AbortSave(DocumentPage& page, const QString& problem, const QString& overwriteLabel = {});
    void SaveAs(DocumentPage& page);
    void ShowMissingBoard();

    struct WaitingSave {
        QPointer<DocumentPage> page;
        QByteArray bytes;
    };

    DocumentTabs& tabs_;
    BoardTool& tool_;
    const BoardMonitor& board_;
    std::unique_ptr<QTemporaryDir> copies_;  // Null until it is needed.
    int lastCopy_ = 0;
    std::deque<WaitingSave> waiting_;  // One save after another: there is one port.
    bool isSaving_ = false;
};

#pragma once

#include "file_save.h"
#include "file_worker.h"

#include <QObject>

#include <expected>
#include <functional>
#include <set>
#include <string>
#include <utility>

class DocumentPage;
class DocumentTabs;

// Saves documents, with the dialogs that this needs. Functions return false if a document was not
// saved, which has then been reported to the user; true if there is no document.
//
// The files are written on other threads. A save on a slow disk continues in the background: the
// function returns false, and the tab shows that the document is being saved. [ui]
class DocumentSaver final : public QObject {
    Q_OBJECT

  public:
    // `tabs` must outlive this object.
    explicit DocumentSaver(DocumentTabs& tabs);

    // Saves documents that are files of a board, and returns whether that succeeded; waits for it
    // if `waits`.
    using SaveOnBoard = std::function<bool(DocumentPage& page, bool waits)>;
    void SetBoardSaver(SaveOnBoard save) { saveOnBoard_ = std::move(save); }

    bool SaveFront();
    bool SaveFrontAs();
    bool SaveAll();

    // Ask about unsaved documents. Return false if the user cancelled.
    bool ConfirmClose(DocumentPage& page);
    bool ConfirmCloseAll();

  Q_SIGNALS:
    void Saved(DocumentPage& page);

  private:
    using Patience = FileWorker::Patience;
    using Outcome = std::expected<SavedFile, SaveError>;

    bool Save(DocumentPage& page, Patience patience);
    bool SaveAs(DocumentPage& page, Patience patience);
    bool Write(DocumentPage& page, SaveRequest request, Patience patience);
    bool Start(DocumentPage& page, SaveRequest request, Patience patience);
    bool Complete(DocumentPage& page, const SaveRequest& request, const Outcome& outcome,
                  Patience patience);
    bool TryOtherwise(DocumentPage& page, SaveRequest request, const SaveError& error,
                      Patience patience);
    bool WaitForSave(DocumentPage& page, Patience patience);
    bool AskToSave(const QString& question);
    bool AskToWriteInPlace(const QString& problem);

    DocumentTabs& tabs_;
    SaveOnBoard saveOnBoard_;
    std::set<std::string> inPlace_;  // The paths that the user allowed to write in place.
    FileWorker worker_;
};

#pragma once

#include <QObject>

class DocumentPage;
class DocumentTabs;

// Saves documents, with the dialogs that this needs. Functions return false if a document was not
// saved, which has then been reported to the user; true if there is no document. [ui]
class DocumentSaver final : public QObject {
    Q_OBJECT

  public:
    // `tabs` must outlive this object.
    explicit DocumentSaver(DocumentTabs& tabs) : tabs_(tabs) {}

    bool SaveFront();
    bool SaveFrontAs();
    bool SaveAll();

    // Ask about unsaved documents. Return false if the user cancelled.
    bool ConfirmClose(DocumentPage& page);
    bool ConfirmCloseAll();

  Q_SIGNALS:
    void Saved(DocumentPage& page);

  private:
    bool Save(DocumentPage& page);
    bool SaveAs(DocumentPage& page);
    bool Write(DocumentPage& page, const QString& path);
    bool SaveAsUtf8(DocumentPage& page, const QString& path, const QString& problem);

    DocumentTabs& tabs_;
};

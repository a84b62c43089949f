#pragma once

#include "document.h"
#include "message_bar.h"

#include <QWidget>

#include <string>
#include <vector>

// The content of a tab: a document, its editor, and messages about its file. [ui]
class DocumentPage final : public QWidget {
  public:
    // `name` is shown until the document has a file, `recoveryId` identifies its recovery copy.
    DocumentPage(const QString& name, std::string recoveryId);

    TextEditor& editor() { return *editor_; }
    Document& document() { return document_; }
    // Shows a message about the file above the text. The choices may use this page.
    void ShowMessage(const QString& text, const std::vector<MessageChoice>& choices);
    // Hides the message about the file when it no longer applies.
    void HideMessage();
    const std::string& recoveryId() const { return recoveryId_; }
    void SetRecoveryId(std::string id) { recoveryId_ = std::move(id); }

    // Whether the document is to be saved again when the current save has finished.
    bool savesAgain() const { return savesAgain_; }
    void SetSavesAgain(bool savesAgain) { savesAgain_ = savesAgain; }

    // Another program has changed or deleted the file. An unmodified document is reloaded, and for
    // a modified one the user is asked. `onChange` is called when the document's state has changed.
    void FollowDisk(const FileStamp& now, const std::function<void()>& onChange);

  private:
    void Reload(const FileStamp& now);
    void AskAboutChange(const FileStamp& now, const std::function<void()>& onChange);

    MessageBar* messages_;
    TextEditor* editor_;
    Document document_;
    std::string recoveryId_;
    bool savesAgain_ = false;
    bool questionPending_ = false;  // Valid only while the message is shown.
};

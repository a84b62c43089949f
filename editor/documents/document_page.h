#pragma once

#include "document.h"

#include <QWidget>

#include <string>

class MessageBar;

// One tab: a document, its editor, and what there is to say about it. Used on the user-interface
// thread.
class DocumentPage final : public QWidget {
  public:
    // `name` is shown until the document has a file, `recoveryId` stands for its recovery copy.
    DocumentPage(const QString& name, std::string recoveryId);

    TextEditor& editor() { return *editor_; }
    Document& document() { return document_; }
    // When what was said or asked about the file holds no more.
    void DropMessage();
    const std::string& recoveryId() const { return recoveryId_; }
    void SetRecoveryId(std::string id) { recoveryId_ = std::move(id); }

    // Looks whether somebody else has written the file. A document without changes of its own
    // follows the file; else the user is asked. `onChange` is called when something came of it.
    void CheckDisk(const std::function<void()>& onChange);

  private:
    void Reload();
    void AskAboutChange(const std::function<void()>& onChange);

    MessageBar* messages_;
    TextEditor* editor_;
    Document document_;
    std::string recoveryId_;
    bool asks_ = false;  // What became of the file, unless the answer has come.
};

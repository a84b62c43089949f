#include "document_page.h"

#include "message_bar.h"
#include "text_editor.h"

#include <QVBoxLayout>

#include <utility>

DocumentPage::DocumentPage(const QString& name, std::string recoveryId)
    : messages_(new MessageBar(this)),
      editor_(new TextEditor(this)),
      document_(*editor_, name),
      recoveryId_(std::move(recoveryId))
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(messages_);
    column->addWidget(editor_, 1);
    setFocusProxy(editor_);
    editor_->SetLanguage(TextEditor::Language::Python);  // The language of most new documents.
}

void DocumentPage::HideMessage()
{
    messages_->hide();
}

void DocumentPage::CheckDisk(const std::function<void()>& onChange)
{
    const auto disk = document_.CheckDisk();
    if (disk == Document::DiskState::Unchanged || (questionPending_ && messages_->IsShowing())) {
        return;
    }
    questionPending_ = false;
    if (disk == Document::DiskState::Deleted) {
        document_.AcceptDisk();
        document_.MarkUnsaved();
        messages_->ShowMessage(
            tr("The file no longer exists on disk. Saving will create it again."),
            {{tr("OK"), [] {}}});
    } else if (document_.IsModified()) {
        AskAboutChange(onChange);
    } else {
        Reload();
    }
    onChange();
}

void DocumentPage::Reload()
{
    if (const auto reloaded = document_.Reload(); !reloaded) {
        document_.AcceptDisk();
        document_.MarkUnsaved();
        messages_->ShowMessage(QString::fromStdString(reloaded.error()), {{tr("OK"), [] {}}});
    }
}

// Until the user answers, the file remains marked as changed, and saving asks as well.
void DocumentPage::AskAboutChange(const std::function<void()>& onChange)
{
    questionPending_ = true;
    messages_->ShowMessage(
        tr("Another program has changed the file, but the document has unsaved changes."),
        {{tr("Reload"),
          [this, onChange] {
              Reload();
              onChange();
          }},
         {tr("Keep My Changes"), [this] { document_.AcceptDisk(); }}});
}

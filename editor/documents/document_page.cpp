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

void DocumentPage::ShowMessage(const QString& text, const std::vector<MessageChoice>& choices)
{
    messages_->ShowMessage(text, choices);
}

void DocumentPage::HideMessage()
{
    messages_->hide();
}

void DocumentPage::FollowDisk(const FileStamp& now, const std::function<void()>& onChange)
{
    if (questionPending_ && messages_->IsShowing()) {
        return;
    }
    questionPending_ = false;
    if (now == FileStamp()) {
        document_.AcceptDisk(now);
        document_.MarkUnsaved();
        messages_->ShowMessage(
            tr("The file no longer exists on disk. Saving will create it again."),
            {{tr("OK"), [] {}}});
    } else if (document_.IsModified()) {
        AskAboutChange(now, onChange);
    } else {
        Reload(now);
    }
    onChange();
}

void DocumentPage::Reload(const FileStamp& now)
{
    if (const auto reloaded = document_.Reload(); !reloaded) {
        document_.AcceptDisk(now);
        document_.MarkUnsaved();
        messages_->ShowMessage(QString::fromStdString(reloaded.error()), {{tr("OK"), [] {}}});
    }
}

// Until the user answers, the file remains marked as changed, and saving asks as well.
void DocumentPage::AskAboutChange(const FileStamp& now, const std::function<void()>& onChange)
{
    questionPending_ = true;
    messages_->ShowMessage(
        tr("Another program has changed the file, but the document has unsaved changes."),
        {{tr("Reload"),
          [this, now, onChange] {
              Reload(now);
              onChange();
          }},
         {tr("Keep My Changes"), [this, now] { document_.AcceptDisk(now); }}});
}

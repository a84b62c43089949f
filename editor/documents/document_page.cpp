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
    editor_->SetLanguage(TextEditor::Language::Python);  // Which most new texts become.
}

void DocumentPage::DropMessage()
{
    messages_->hide();
}

void DocumentPage::CheckDisk(const std::function<void()>& onChange)
{
    const auto disk = document_.CheckDisk();
    if (disk == Document::Disk::Same || (asks_ && messages_->IsAsking())) {
        return;
    }
    asks_ = false;
    if (disk == Document::Disk::Gone) {
        document_.AcceptDisk();
        document_.MarkUnsaved();
        messages_->Ask(tr("The file is gone from the disk. Saving writes it again."),
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
        messages_->Ask(QString::fromStdString(reloaded.error()), {{tr("OK"), [] {}}});
    }
}

// Until there is an answer the file counts as changed, and saving asks as well.
void DocumentPage::AskAboutChange(const std::function<void()>& onChange)
{
    asks_ = true;
    messages_->Ask(tr("Another program has changed the file, and there are unsaved changes here."),
                   {{tr("Load the File"),
                     [this, onChange] {
                         Reload();
                         onChange();
                     }},
                    {tr("Keep Mine"), [this] { document_.AcceptDisk(); }}});
}

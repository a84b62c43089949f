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
}

void DocumentPage::CheckDisk(const std::function<void()>& onChange)
{
    switch (document_.CheckDisk()) {
        case Document::Disk::Same: return;
        case Document::Disk::Gone:
            document_.AcceptDisk();
            document_.MarkUnsaved();
            messages_->Ask(tr("The file is gone from the disk. Saving writes it again."),
                           {{tr("OK"), [] {}}});
            break;
        case Document::Disk::Changed:
            document_.AcceptDisk();
            if (document_.IsModified()) {
                AskAboutChange(onChange);
            } else {
                Reload();
            }
            break;
    }
    onChange();
}

void DocumentPage::Reload()
{
    if (const auto reloaded = document_.Reload(); !reloaded) {
        document_.MarkUnsaved();
        messages_->Ask(QString::fromStdString(reloaded.error()), {{tr("OK"), [] {}}});
    }
}

void DocumentPage::AskAboutChange(const std::function<void()>& onChange)
{
    messages_->Ask(tr("Another program has changed the file, and there are unsaved changes here."),
                   {{tr("Load the File"),
                     [this, onChange] {
                         Reload();
                         onChange();
                     }},
                    {tr("Keep Mine"), [] {}}});
}

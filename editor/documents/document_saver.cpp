#include "document_saver.h"

#include "document_tabs.h"
#include "path_text.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace {

// The usual save is done when the function returns.
constexpr std::chrono::milliseconds kSavePatience{200};
constexpr std::chrono::seconds kClosePatience{5};
constexpr int kMaxThreads = 8;

}  // namespace

DocumentSaver::DocumentSaver(DocumentTabs& tabs) : tabs_(tabs), worker_(kMaxThreads, kClosePatience)
{
}

bool DocumentSaver::SaveFront()
{
    auto* const page = tabs_.FrontPage();
    return page == nullptr || Save(*page, kSavePatience);
}

bool DocumentSaver::SaveFrontAs()
{
    auto* const page = tabs_.FrontPage();
    return page == nullptr || SaveAs(*page, kSavePatience);
}

bool DocumentSaver::SaveAll()
{
    bool areSaved = true;
    for (int i = 0; i < tabs_.count(); ++i) {
        auto& page = *tabs_.PageAt(i);
        if (page.document().IsModified() && !Save(page, kSavePatience)) {
            areSaved = false;
            if (!page.document().IsSaving()) {
                return false;
            }
        }
    }
    return areSaved;
}

bool DocumentSaver::Save(DocumentPage& page, Patience patience)
{
    if (page.document().boardFile() != nullptr) {
        return saveOnBoard_(page, patience == kClosePatience);
    }
    if (!WaitForSave(page, patience)) {
        page.SetSavesAgain(true);
        return false;
    }
    const auto& document = page.document();
    const auto& path = document.path();
    if (path.empty()) {
        return SaveAs(page, patience);
    }
    // Do not overwrite another program's changes without asking.
    return Write(page, {path, {}, document.stamp(), inPlace_.contains(path)}, patience);
}

bool DocumentSaver::SaveAs(DocumentPage& page, Patience patience)
{
    tabs_.setCurrentWidget(&page);
    const auto& document = page.document();
    QFileDialog dialog(&tabs_, tr("Save As"), {}, Document::FileDialogFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const bool isNew = document.path().empty();
    if (isNew || document.IsPython()) {
        dialog.setDefaultSuffix("py");
    }
    dialog.selectFile(isNew ? document.Name() : PathToText(document.path()));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return false;
    }
    const QString path = dialog.selectedFiles().constFirst();
    if (const int other = tabs_.IndexOf(path); other >= 0 && tabs_.PageAt(other) != &page) {
        Q_EMIT tabs_.Failed(tr("%1 is open in another tab. Close that tab first.").arg(path));
        return false;
    }
    return WaitForSave(page, patience) && Write(page, {TextToPath(path), {}, {}}, patience);
}

// Whether the document is not being saved, or no longer.
bool DocumentSaver::WaitForSave(DocumentPage& page, Patience patience)
{
    return !page.document().IsSaving() ||
           (worker_.WaitFor(page.recoveryId(), patience) && !page.document().IsSaving());
}

bool DocumentSaver::Write(DocumentPage& page, SaveRequest request, Patience patience)
{
    // A crash while the file is overwritten would otherwise destroy both versions.
    if (request.inPlace && !tabs_.copies().KeepNow(page)) {
        Q_EMIT tabs_.Failed(tr("%1 was not saved, because it could not be backed up first.")
                                .arg(page.document().Name()));
        return false;
    }
    auto bytes = page.document().BeginSave();
    if (bytes) {
        request.bytes = std::move(*bytes);
        return Start(page, std::move(request), patience);
    }
    const auto problem = QString::fromStdString(bytes.error());
    if (page.document().encoding() != TextEncoding::Latin1) {
        Q_EMIT tabs_.Failed(problem);
        return false;
    }
    // The text may contain characters that the file's encoding cannot represent.
    if (!AskToSave(problem + tr(".\n\nSave the file as UTF-8 instead?"))) {
        return false;
    }
    page.document().SetEncoding(TextEncoding::Utf8);
    return Write(page, std::move(request), patience);
}

bool DocumentSaver::Start(DocumentPage& page, SaveRequest request, Patience patience)
{
    const auto result = std::make_shared<std::optional<bool>>();
    const std::string key = page.recoveryId();
    worker_.Do(key,
               [this, request = std::move(request), patience, result,
                saved = QPointer<DocumentPage>(&page)]() mutable -> FileWorker::Result {
                   auto outcome = SaveFile(request);
                   request.bytes.clear();
                   return [this, request = std::move(request), patience, result,
                           saved = std::move(saved), outcome = std::move(outcome)] {
                       if (saved != nullptr && tabs_.indexOf(saved) >= 0) {
                           *result = Complete(*saved, request, outcome, patience);
                       } else if (!outcome) {
                           Q_EMIT tabs_.Failed(QString::fromStdString(outcome.error().message));
                       }
                   };
               });
    if (!worker_.WaitFor(key, patience)) {
        tabs_.ShowState(page);
    }
    return result->value_or(false);
}

bool DocumentSaver::Complete(DocumentPage& page, const SaveRequest& request, const Outcome& outcome,
                             Patience patience)
{
    const bool savesAgain = page.savesAgain();
    page.SetSavesAgain(false);
    if (!outcome) {
        page.document().AbortSave();
        tabs_.ShowState(page);
        return TryOtherwise(page, request, outcome.error(), patience);
    }
    page.document().EndSave(request.path, *outcome);
    page.HideMessage();
    Q_EMIT Saved(page);
    return !savesAgain || !page.document().IsModified() || Save(page, patience);
}

bool DocumentSaver::TryOtherwise(DocumentPage& page, SaveRequest request, const SaveError& error,
                                 Patience patience)
{
    const auto problem = QString::fromStdString(error.message);
    switch (error.kind) {
        case SaveError::Kind::Changed:
            request.known.reset();
            return AskToSave(tr("Another program has changed %1. Overwrite the file?")
                                 .arg(page.document().Name())) &&
                   Write(page, std::move(request), patience);
        case SaveError::Kind::NotReplaceable:
            if (!AskToWriteInPlace(problem)) {
                return false;
            }
            request.inPlace = true;
            inPlace_.insert(request.path);
            return Write(page, std::move(request), patience);
        case SaveError::Kind::Failed: Q_EMIT tabs_.Failed(problem); return false;
    }
    return false;
}

bool DocumentSaver::AskToSave(const QString& question)
{
    return QMessageBox::question(&tabs_, tr("Save"), question,
                                 QMessageBox::Save | QMessageBox::Cancel,
                                 QMessageBox::Cancel) == QMessageBox::Save;
}

bool DocumentSaver::AskToWriteInPlace(const QString& problem)
{
    QMessageBox box(QMessageBox::Question, tr("Save"),
                    problem + tr(".\n\nThe file can be written in place instead. If that is "
                                 "interrupted, the file is damaged; a copy of the text is kept "
                                 "until it is complete."),
                    QMessageBox::Cancel, &tabs_);
    const auto* const write = box.addButton(tr("&Write in Place"), QMessageBox::AcceptRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == write;
}

bool DocumentSaver::ConfirmClose(DocumentPage& page)
{
    WaitForSave(page, kClosePatience);
    if (!page.document().IsModified()) {
        return true;
    }
    tabs_.setCurrentWidget(&page);
    const auto& document = page.document();
    const auto answer = QMessageBox::warning(
        &tabs_, tr("Close"),
        (document.IsSaving() ? tr("%1 is still being saved.") : tr("%1 has unsaved changes."))
            .arg(document.Name()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard ||
           (answer == QMessageBox::Save && Save(page, kClosePatience));
}

bool DocumentSaver::ConfirmCloseAll()
{
    for (int i = 0; i < tabs_.count(); ++i) {
        if (!ConfirmClose(*tabs_.PageAt(i))) {
            return false;
        }
    }
    return true;
}

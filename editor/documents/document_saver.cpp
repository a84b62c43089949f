#include "document_saver.h"

#include "document_tabs.h"

#include <QFileDialog>
#include <QMessageBox>

bool DocumentSaver::SaveFront()
{
    auto* const page = tabs_.FrontPage();
    return page == nullptr || Save(*page);
}

bool DocumentSaver::SaveFrontAs()
{
    auto* const page = tabs_.FrontPage();
    return page == nullptr || SaveAs(*page);
}

bool DocumentSaver::SaveAll()
{
    for (int i = 0; i < tabs_.count(); ++i) {
        auto& page = *tabs_.PageAt(i);
        if (page.document().IsModified() && !Save(page)) {
            return false;
        }
    }
    return true;
}

bool DocumentSaver::Save(DocumentPage& page)
{
    const auto& path = page.document().path();
    if (path.empty()) {
        return SaveAs(page);
    }
    // Do not overwrite another program's changes without asking.
    if (page.document().CheckDisk() == Document::DiskState::Changed) {
        const auto answer = QMessageBox::question(
            &tabs_, tr("Save"),
            tr("Another program has changed %1. Overwrite the file?").arg(page.document().Name()),
            QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Save) {
            return false;
        }
    }
    return Write(page, QString::fromStdString(path));
}

bool DocumentSaver::SaveAs(DocumentPage& page)
{
    tabs_.setCurrentWidget(&page);
    const auto& document = page.document();
    QFileDialog dialog(&tabs_, tr("Save As"), {}, Document::FileDialogFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const bool isNew = document.path().empty();
    if (isNew || document.IsPython()) {
        dialog.setDefaultSuffix("py");
    }
    dialog.selectFile(isNew ? document.Name() : QString::fromStdString(document.path()));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return false;
    }
    const QString path = dialog.selectedFiles().constFirst();
    if (const int other = tabs_.IndexOf(path); other >= 0 && tabs_.PageAt(other) != &page) {
        Q_EMIT tabs_.Failed(tr("%1 is open in another tab. Close that tab first.").arg(path));
        return false;
    }
    return Write(page, path);
}

bool DocumentSaver::Write(DocumentPage& page, const QString& path)
{
    const auto saved = page.document().SaveAs(path.toStdString());
    if (!saved) {
        const auto problem = QString::fromStdString(saved.error());
        if (page.document().encoding() == TextEncoding::Latin1) {
            return SaveAsUtf8(page, path, problem);
        }
        Q_EMIT tabs_.Failed(problem);
        return false;
    }
    page.HideMessage();
    Q_EMIT Saved(page);
    return true;
}

// The text may contain characters that the file's encoding cannot represent.
bool DocumentSaver::SaveAsUtf8(DocumentPage& page, const QString& path, const QString& problem)
{
    const auto answer = QMessageBox::question(
        &tabs_, tr("Save"), problem + tr(".\n\nSave the file as UTF-8 instead?"),
        QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Save) {
        return false;
    }
    page.document().SetEncoding(TextEncoding::Utf8);
    return Write(page, path);
}

bool DocumentSaver::ConfirmClose(DocumentPage& page)
{
    if (!page.document().IsModified()) {
        return true;
    }
    tabs_.setCurrentWidget(&page);
    const auto answer = QMessageBox::warning(
        &tabs_, tr("Close"), tr("%1 has unsaved changes.").arg(page.document().Name()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && Save(page));
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

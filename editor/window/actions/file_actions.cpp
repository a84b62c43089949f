#include "file_actions.h"

#include "document_tabs.h"
#include "message_area.h"
#include "path_text.h"
#include "project.h"

#include <QFileDialog>
#include <QFileInfo>

namespace {

constexpr int kMaxRecent = 12;

}  // namespace

FileActions::FileActions(DocumentTabs& tabs, Project& project, MessageArea& messages,
                         QWidget* window)
    : QObject(window), tabs_(tabs), project_(project), messages_(messages), window_(window)
{
    connect(&tabs_, &DocumentTabs::Opened, this, &FileActions::AddRecent);
    connect(&tabs_, &DocumentTabs::LineTooLong, this, &FileActions::OfferLongLineFile);
}

void FileActions::Open(const QStringList& paths)
{
    for (const auto& path : paths) {
        if (IsFolder(path)) {
            project_.SetFolder(path);
        } else {
            tabs_.Open(path);
        }
    }
}

// A file that has disappeared since the last session is not reported.
void FileActions::Reopen(const QStringList& paths, const QString& front)
{
    for (const auto& path : paths + QStringList(front)) {
        if (IsRegularFile(path)) {
            tabs_.Open(path);
        }
    }
}

void FileActions::OpenByDialog()
{
    const auto* const front = tabs_.Front();
    const QString folder = front != nullptr && !front->path().empty()
                               ? QFileInfo(PathToText(front->path())).path()
                               : project_.folder();
    Open(QFileDialog::getOpenFileNames(window_, tr("Open"), folder, Document::FileDialogFilter()));
}

void FileActions::OpenFolderByDialog()
{
    const QString folder =
        QFileDialog::getExistingDirectory(window_, tr("Open Folder"), project_.folder());
    if (!folder.isEmpty()) {
        project_.SetFolder(folder);
    }
}

void FileActions::MakeTarget(const Document& document)
{
    if (document.path().empty()) {
        return messages_.Report(tr("Save the document to a file first."));
    }
    project_.SetTarget(PathToText(document.path()));
}

void FileActions::AddRecent(const QString& path)
{
    recent_.removeAll(path);
    recent_.prepend(path);
    recent_ = recent_.mid(0, kMaxRecent);
}

void FileActions::OfferLongLineFile(const QString& path, qint64 line)
{
    messages_.OfferLongLineFile(path, line, [this](const QString& accepted) {
        tabs_.Open(accepted, DocumentTabs::LongLines::Accept);
    });
}

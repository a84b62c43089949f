#include "file_actions.h"

#include "document_tabs.h"
#include "file_bytes.h"
#include "message_area.h"
#include "path_text.h"
#include "project.h"

#include <QFileDialog>
#include <QFileInfo>

#include <chrono>

namespace {

constexpr int kMaxRecent = 12;
constexpr int kMaxThreads = 8;
constexpr std::chrono::seconds kDiskPatience{2};

}  // namespace

FileActions::FileActions(DocumentTabs& tabs, Project& project, MessageArea& messages,
                         QWidget* window)
    : QObject(window),
      tabs_(tabs),
      project_(project),
      messages_(messages),
      window_(window),
      worker_(kMaxThreads, std::chrono::seconds(0))
{
    connect(&tabs_, &DocumentTabs::Opened, this, &FileActions::AddRecent);
    connect(&tabs_, &DocumentTabs::LineTooLong, this, &FileActions::OfferLongLineFile);
}

void FileActions::Open(const QStringList& paths)
{
    for (const auto& path : paths) {
        if (!Answers(path)) {
            continue;
        }
        if (IsFolder(path)) {
            project_.SetFolder(path);
        } else {
            tabs_.Open(path);
        }
    }
}

// The calls that open a file would wait for good on a mounted server that is gone.
bool FileActions::Answers(const QString& path)
{
    const std::string key = TextToPath(path);
    worker_.Do(key, [key]() -> FileWorker::Result {
        FileStamp::Of(key);
        return {};
    });
    if (worker_.WaitFor(key, kDiskPatience)) {
        return true;
    }
    messages_.Report(tr("%1 was not opened: its disk does not answer.").arg(path));
    return false;
}

// A file that has disappeared since the last session is not reported.
void FileActions::Reopen(const QStringList& paths, const QString& front)
{
    for (const auto& path : paths + QStringList(front)) {
        if (Answers(path) && IsRegularFile(path)) {
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

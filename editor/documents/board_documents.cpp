#include "board_documents.h"

#include "board_file.h"
#include "board_scripts.h"
#include "board_task.h"
#include "document_tabs.h"
#include "file_save.h"
#include "message_bar.h"
#include "path_text.h"

#include <QCryptographicHash>
#include <QEventLoop>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <filesystem>
#include <utility>
#include <vector>

namespace {

constexpr std::chrono::seconds kBoardSavePatience{30};

QByteArray HashOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

bool IsMissing(const BoardResult& result)
{
    return result.output.find("No such file") != std::string::npos;
}

// The last line that the tool printed says why it failed.
QString ReasonOf(const BoardResult& result)
{
    const auto line = QString::fromUtf8(result.output).trimmed().section('\n', -1).trimmed();
    return result.isStopped ? BoardDocuments::tr("another command stopped it")
           : line.isEmpty() ? BoardDocuments::tr("the tool failed")
                            : line;
}

}  // namespace

BoardDocuments::BoardDocuments(DocumentTabs& tabs, BoardTool& tool, const BoardMonitor& board,
                               QObject* parent)
    : QObject(parent), tabs_(tabs), tool_(tool), board_(board)
{
    tabs_.saver().SetBoardSaver(
        [this](DocumentPage& page, bool waits) { return Save(page, waits); });
    connect(&board_, &BoardMonitor::Changed, this, &BoardDocuments::ShowMissingBoard);
}

BoardDocuments::~BoardDocuments() = default;

DocumentPage* BoardDocuments::FindPage(const std::string& path) const
{
    for (int i = 0; i < tabs_.count(); ++i) {
        const auto* const file = tabs_.PageAt(i)->document().boardFile();
        if (file != nullptr && file->path == path && file->board.IsSame(board_.board())) {
            return tabs_.PageAt(i);
        }
    }
    return nullptr;
}

// Each in a folder of its own, because files of several directories may have the same name.
std::expected<std::string, std::string> BoardDocuments::NewCopy(const std::string& path)
{
    namespace fs = std::filesystem;
    if (!copies_) {
        copies_ = std::make_unique<QTemporaryDir>();
    }
    const std::string folder = TextToPath(copies_->path()) + "/" + std::to_string(++lastCopy_);
    std::error_code error;
    if (!copies_->isValid() || !fs::create_directory(folder, error)) {
        return std::unexpected("cannot create a temporary folder");
    }
    return folder + "/" + fs::path(path).filename().string();
}

void BoardDocuments::Open(const std::string& path)
{
    if (auto* const open = FindPage(path)) {
        return tabs_.setCurrentWidget(open);
    }
    const auto copy = NewCopy(path);
    if (!copy) {
        Q_EMIT tabs_.Failed(QString::fromStdString(copy.error()));
        return;
    }
    RunBoardTask(tool_, {"cp", BoardPathWord(path), *copy}, *this,
                 [this, path, copy = *copy](const BoardResult& result) {
                     if (result.IsSuccess()) {
                         return Show(path, copy);
                     }
                     Q_EMIT tabs_.Failed(tr("%1 was not opened from the board: %2")
                                             .arg(QString::fromStdString(path), ReasonOf(result)));
                 });
}

void BoardDocuments::Show(const std::string& path, const std::string& copy)
{
    const auto bytes = ReadFileBytes(copy);
    const auto file = Document::Read(copy);
    if (!bytes || !file) {
        Q_EMIT tabs_.Failed(QString::fromStdString(!bytes ? bytes.error() : file.error()));
        return;
    }
    if (FirstTooLongLine(file->content.text)) {
        Q_EMIT tabs_.Failed(tr("%1 was not opened from the board: it has a line that is too long "
                               "to edit smoothly.")
                                .arg(QString::fromStdString(path)));
        return;
    }
    auto* const front = tabs_.FrontPage();
    auto& page = front != nullptr && front->document().IsPristine() ? *front : tabs_.AddPage();
    page.document().LoadFromBoard(*file, {path, board_.board(), copy, HashOf(*bytes)});
    tabs_.copies().Forget(page);  // Loading the file is not a change.
    tabs_.setCurrentWidget(&page);
    tabs_.ShowState(page);
    page.setFocus();
}

std::expected<void, std::string> BoardDocuments::WriteCopy(Document& document)
{
    const auto bytes = document.Bytes();
    return bytes ? SaveAtomically(document.boardFile()->copy, *bytes)
                 : std::unexpected(bytes.error());
}

bool BoardDocuments::Save(DocumentPage& page, bool waits)
{
    StartSave(page);
    const QPointer saved(&page);
    if (waits && page.document().IsSaving()) {
        QEventLoop loop;
        const auto quitWhenSaved = [&] {
            if (!saved || !saved->document().IsSaving()) {
                loop.quit();
            }
        };
        connect(this, &BoardDocuments::SaveEnded, &loop, quitWhenSaved);
        QTimer::singleShot(kBoardSavePatience, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return saved && !saved->document().IsModified();
}

void BoardDocuments::StartSave(DocumentPage& page)
{
    auto& document = page.document();
    if (document.IsSaving()) {
        return page.SetSavesAgain(true);
    }
    const auto written = WriteCopy(document);
    const auto bytes = written ? document.BeginSave() : std::unexpected(written.error());
    if (!bytes) {
        Q_EMIT tabs_.Failed(QString::fromStdString(bytes.error()));
        return;
    }
    tabs_.ShowState(page);
    waiting_.push_back({&page, *bytes});
    if (!isSaving_) {
        StartNextSave();
    }
}

void BoardDocuments::StartNextSave()
{
    isSaving_ = false;
    while (!waiting_.empty() && !isSaving_) {
        const auto [page, bytes] = waiting_.front();
        waiting_.pop_front();
        if (!page) {
            continue;
        }
        isSaving_ = true;
        const auto& file = *page->document().boardFile();
        if (!board_.board().IsSame(file.board)) {
            AbortSave(*page, tr("its board is not attached"));
        } else {
            file.mayOverwrite ? Transfer(*page, bytes) : Compare(*page, bytes);
        }
    }
}

// Whether the file is still what was opened is asked on the board, where also other programs write
// files.
void BoardDocuments::Compare(DocumentPage& page, const QByteArray& bytes)
{
    RunBoardTask(tool_, {"sha256sum", BoardPathWord(page.document().boardFile()->path)}, *this,
                 [this, bytes, saved = QPointer(&page)](const BoardResult& result) {
                     saved ? EndCompare(*saved, bytes, result) : StartNextSave();
                 });
}

void BoardDocuments::EndCompare(DocumentPage& page, const QByteArray& bytes,
                                const BoardResult& result)
{
    const QByteArray output = QByteArray::fromStdString(result.output);
    if (!result.IsSuccess()) {
        IsMissing(result)
            ? AbortSave(page, tr("the file is no longer on the board"), tr("Save Anyway"))
            : AbortSave(page, ReasonOf(result));
    } else if (output.contains(page.document().boardFile()->sha256)) {
        Transfer(page, bytes);
    } else if (output.contains(HashOf(bytes))) {
        EndSave(page, bytes);  // An upload wrote the same.
    } else {
        AbortSave(page, tr("the file on the board has changed"), tr("Overwrite"));
    }
}

void BoardDocuments::Transfer(DocumentPage& page, const QByteArray& bytes)
{
    const auto& file = *page.document().boardFile();
    RunBoardTask(tool_, {"cp", file.copy, BoardPathWord(file.path)}, *this,
                 [this, bytes, saved = QPointer(&page)](const BoardResult& result) {
                     if (!saved) {
                         return StartNextSave();
                     }
                     if (result.IsSuccess()) {
                         return EndSave(*saved, bytes);
                     }
                     saved->document().boardFile()->mayOverwrite = true;
                     AbortSave(*saved, ReasonOf(result), tr("Save Again"));
                 });
}

void BoardDocuments::EndSave(DocumentPage& page, const QByteArray& bytes)
{
    auto& document = page.document();
    document.EndBoardSave(HashOf(bytes));
    page.HideMessage();
    // It may have changed while it was written.
    document.IsModified() ? tabs_.copies().TextChanged(page) : tabs_.copies().Discard(page);
    tabs_.ShowState(page);
    const bool savesAgain = page.savesAgain();
    page.SetSavesAgain(false);
    if (savesAgain && document.IsModified()) {
        StartSave(page);
    }
    Q_EMIT SaveEnded();
    StartNextSave();
}

void BoardDocuments::AbortSave(DocumentPage& page, const QString& problem,
                               const QString& overwriteLabel)
{
    page.document().AbortSave();
    page.SetSavesAgain(false);
    tabs_.ShowState(page);
    std::vector<MessageChoice> choices;
    if (!overwriteLabel.isEmpty()) {
        choices.push_back({overwriteLabel, [this, &page] {
                               page.document().boardFile()->mayOverwrite = true;
                               Save(page, false);
                           }});
    }
    choices.push_back({tr("Save As…"), [this, &page] { SaveAs(page); }});
    page.ShowMessage(tr("%1 was not saved: %2.").arg(page.document().Name(), problem), choices);
    Q_EMIT SaveEnded();
    StartNextSave();
}

void BoardDocuments::SaveAs(DocumentPage& page)
{
    tabs_.setCurrentWidget(&page);
    tabs_.saver().SaveFrontAs();
}

void BoardDocuments::ShowMissingBoard()
{
    for (int i = 0; i < tabs_.count(); ++i) {
        auto& page = *tabs_.PageAt(i);
        const auto* const file = page.document().boardFile();
        if (file == nullptr) {
            continue;
        }
        if (file->board.IsSame(board_.board())) {
            page.HideMessage();
        } else {
            page.ShowMessage(tr("The board with %1 is not attached. The text is kept here.")
                                 .arg(QString::fromStdString(file->path)),
                             {{tr("Save As…"), [this, &page] { SaveAs(page); }}});
        }
    }
}

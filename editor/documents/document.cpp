#include "document.h"

#include "path_text.h"
#include "python_file.h"
#include "text_editor.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <utility>

Document::Document(TextEditor& editor, QString name) : editor_(editor), name_(std::move(name)) {}

QString Document::Name() const
{
    return path_.empty() ? name_ : QFileInfo(PathToText(path_)).fileName();
}

bool Document::IsPython() const
{
    return IsPythonFile(TextToPath(Name()));
}

QString Document::FileDialogFilter()
{
    QStringList patterns;
    for (const auto extension : kPythonExtensions) {
        patterns.append("*" + QString::fromUtf8(extension));
    }
    return QCoreApplication::translate("Document", "Python (%1);;All files (*)")
        .arg(patterns.join(' '));
}

bool Document::IsModified() const
{
    return unsaved_ || saving_ || editor_.isModified();
}

bool Document::IsPristine() const
{
    return path_.empty() && !boardFile_ && !IsModified() && editor_.length() == 0;
}

void Document::SetPath(const std::string& path)
{
    path_ = path;
    boardFile_.reset();
    ShowLanguage();
}

void Document::ShowLanguage()
{
    editor_.SetLanguage(IsPython() ? TextEditor::Language::Python
                                   : TextEditor::Language::PlainText);
}

std::expected<Document::File, std::string> Document::Read(const std::string& path)
{
    const auto before = FileStamp::Of(path);
    auto content = LoadText(path);
    if (!content) {
        return std::unexpected(content.error());
    }
    return File{path, std::move(*content), before, FileIdentity(path)};
}

// Adopts everything but the text.
void Document::Adopt(const File& file)
{
    stamp_ = file.stamp;
    identity_ = file.identity;
    encoding_ = file.content.encoding;
    unsaved_ = false;
}

void Document::Load(const File& file)
{
    SetPath(file.path);
    Adopt(file);
    editor_.SetContent(file.content.text);
}

void Document::LoadFromBoard(const File& copy, BoardFile file)
{
    Adopt(copy);
    boardFile_ = std::move(file);
    name_ = QFileInfo(PathToText(boardFile_->path)).fileName();
    ShowLanguage();
    editor_.SetContent(copy.content.text);
}

std::expected<void, std::string> Document::Reload()
{
    const auto file = Read(path_);
    if (!file) {
        return std::unexpected(file.error());
    }
    // Accepted if the user has already opened the document with such a line.
    if (FirstTooLongLine(file->content.text) && !FirstTooLongLine(editor_.Content())) {
        return std::unexpected(path_ + " now has a line that is too long to edit smoothly");
    }
    Adopt(*file);
    editor_.ReplaceContent(file->content.text);
    return {};
}

void Document::Recover(const RecoveryCopy& copy)
{
    if (!copy.path.empty()) {
        SetPath(copy.path);
        identity_ = FileIdentity(copy.path);
    }
    encoding_ = copy.encoding;
    stamp_ = copy.stamp;
    editor_.ReplaceContent(QString::fromUtf8(copy.text));
    MarkUnsaved();
}

std::expected<QByteArray, std::string> Document::BeginSave()
{
    auto bytes = Bytes();
    if (bytes) {
        saving_ = true;
        editor_.setModified(false);  // From now on the editor notices what the file will not have.
    }
    return bytes;
}

void Document::EndSave(const std::string& path, const SavedFile& file)
{
    if (path != path_) {
        SetPath(path);
    }
    stamp_ = file.stamp;
    identity_ = file.identity;
    saving_ = false;
    unsaved_ = false;
}

std::expected<QByteArray, std::string> Document::Bytes() const
{
    return Encode(editor_.Content(), encoding_);
}

void Document::EndBoardSave(const QByteArray& sha256)
{
    boardFile_->sha256 = sha256;
    boardFile_->mayOverwrite = false;
    saving_ = false;
    unsaved_ = false;
}

void Document::AbortSave()
{
    saving_ = false;
    MarkUnsaved();
}

RecoveryCopy Document::Copy() const
{
    return {path_, encoding_, editor_.Utf8(), stamp_};
}

const std::string& RunPathOf(const Document& document)
{
    const auto* const file = document.boardFile();
    return file != nullptr ? file->copy : document.path();
}

QString TitleOf(const Document& document)
{
    return document.boardFile() == nullptr
               ? document.Name()
               : QCoreApplication::translate("Document", "%1 (on the board)").arg(document.Name());
}

QString PlaceOf(const Document& document)
{
    const auto* const file = document.boardFile();
    return file == nullptr ? PathToText(document.path())
                           : QCoreApplication::translate("Document", "On the board: %1")
                                 .arg(QString::fromStdString(file->path));
}

#include "document.h"

#include "file_bytes.h"
#include "python_file.h"
#include "text_editor.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <utility>

Document::Document(TextEditor& editor, QString name) : editor_(editor), name_(std::move(name)) {}

QString Document::Name() const
{
    return path_.empty() ? name_ : QFileInfo(QString::fromStdString(path_)).fileName();
}

bool Document::IsPython() const
{
    return IsPythonFile(Name().toStdString());
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
    return unsaved_ || editor_.isModified();
}

bool Document::IsPristine() const
{
    return path_.empty() && !IsModified() && editor_.length() == 0;
}

void Document::SetPath(const std::string& path)
{
    path_ = path;
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
    return File{path, std::move(*content), before};
}

// Adopts everything but the text.
void Document::Adopt(const File& file)
{
    stamp_ = file.stamp;
    encoding_ = file.content.encoding;
    unsaved_ = false;
}

void Document::Load(const File& file)
{
    SetPath(file.path);
    Adopt(file);
    editor_.SetContent(file.content.text);
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
    }
    encoding_ = copy.encoding;
    stamp_ = copy.stamp;
    editor_.ReplaceContent(QString::fromUtf8(copy.text));
    MarkUnsaved();
}

std::expected<void, std::string> Document::SaveAs(const std::string& path)
{
    const auto bytes = Encode(editor_.Content(), encoding_);
    if (!bytes) {
        return std::unexpected(bytes.error());
    }
    if (const auto saved = SaveAtomically(path, *bytes); !saved) {
        return saved;
    }
    if (path != path_) {
        SetPath(path);
    }
    AcceptDisk();
    unsaved_ = false;
    editor_.setModified(false);
    return {};
}

Document::DiskState Document::CheckDisk() const
{
    if (path_.empty()) {
        return DiskState::Unchanged;
    }
    const auto now = FileStamp::Of(path_);
    if (now == stamp_) {
        return DiskState::Unchanged;
    }
    return now == FileStamp() ? DiskState::Deleted : DiskState::Changed;
}

void Document::AcceptDisk()
{
    stamp_ = FileStamp::Of(path_);
}

RecoveryCopy Document::Copy() const
{
    return {path_, encoding_, editor_.Utf8(), stamp_};
}

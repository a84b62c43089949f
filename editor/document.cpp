#include "document.h"

#include "file_bytes.h"
#include "text_editor.h"

#include <QFileInfo>

#include <utility>

Document::Document(TextEditor& editor, QString name) : editor_(editor), name_(std::move(name)) {}

QString Document::Name() const
{
    return path_.empty() ? name_ : QFileInfo(QString::fromStdString(path_)).fileName();
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
    const QString name = Name();
    const bool isPython = name.endsWith(".py") || name.endsWith(".pyw");
    editor_.SetLanguage(isPython ? TextEditor::Language::Python : TextEditor::Language::PlainText);
}

// The file's text; takes over how it is encoded and what the disk holds.
std::expected<QString, std::string> Document::Read()
{
    const auto before = FileStamp::Of(path_);
    auto loaded = LoadText(path_);
    if (!loaded) {
        return std::unexpected(loaded.error());
    }
    stamp_ = before;
    encoding_ = loaded->encoding;
    unsaved_ = false;
    return std::move(loaded->text);
}

std::expected<void, std::string> Document::Load(const std::string& path)
{
    SetPath(path);
    const auto text = Read();
    if (!text) {
        SetPath({});
        return std::unexpected(text.error());
    }
    editor_.SetContent(*text);
    return {};
}

std::expected<void, std::string> Document::Reload()
{
    const auto text = Read();
    if (!text) {
        return std::unexpected(text.error());
    }
    editor_.ReplaceContent(*text);
    return {};
}

void Document::Recover(const RecoveryCopy& copy)
{
    SetPath(copy.path);
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

Document::Disk Document::CheckDisk() const
{
    if (path_.empty()) {
        return Disk::Same;
    }
    const auto now = FileStamp::Of(path_);
    if (now == stamp_) {
        return Disk::Same;
    }
    return now == FileStamp() ? Disk::Gone : Disk::Changed;
}

void Document::AcceptDisk()
{
    stamp_ = FileStamp::Of(path_);
}

RecoveryCopy Document::Copy() const
{
    return {path_, encoding_, editor_.Utf8(), stamp_};
}

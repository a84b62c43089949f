#pragma once

#include "document_file.h"
#include "recovery.h"

#include <QString>

#include <expected>
#include <string>

class TextEditor;

// One document: the file that an editor's text comes from and goes to, and what the file held then.
// Errors are sentences for the user. Used on the user-interface thread.
class Document {
  public:
    enum class Disk { Same, Changed, Gone };

    // A new text, which has no file yet. `editor` is not owned and must outlive this object.
    Document(TextEditor& editor, QString name);

    // Full; empty for none yet.
    const std::string& path() const { return path_; }
    // The file's, or the one given.
    QString Name() const;
    // As its name tells.
    bool IsPython() const;
    TextEncoding encoding() const { return encoding_; }
    void SetEncoding(TextEncoding encoding) { encoding_ = encoding; }
    // Whether the editor holds what the disk does not.
    bool IsModified() const;
    // For a text that has lost its file.
    void MarkUnsaved() { unsaved_ = true; }
    // New, empty and never touched: another may take its place.
    bool IsPristine() const;

    // A file as it was read.
    struct File {
        std::string path;
        LoadedText content;
        FileStamp stamp;
    };
    static std::expected<File, std::string> Read(const std::string& path);
    // Only of a pristine one.
    void Show(const File& file);
    // The file's text in place of the editor's, which can be undone.
    std::expected<void, std::string> Reload();
    // Takes over a copy that a crash has left, which can be undone. It counts as modified, and what
    // other programs have done to the file since then as a change.
    void Recover(const RecoveryCopy& copy);

    std::expected<void, std::string> SaveAs(const std::string& path);

    // Whether the file is still as it was read or saved last.
    Disk CheckDisk() const;
    // Takes the file for known as it is now: the next save writes over it.
    void AcceptDisk();

    RecoveryCopy Copy() const;

  private:
    void TakeOver(const File& file);
    void SetPath(const std::string& path);

    TextEditor& editor_;
    QString name_;
    std::string path_;
    TextEncoding encoding_ = TextEncoding::Utf8;
    FileStamp stamp_;
    bool unsaved_ = false;  // Whatever the editor says.
};

#pragma once

#include "board_file.h"
#include "document_file.h"
#include "file_save.h"
#include "recovery.h"

#include <QString>

#include <expected>
#include <optional>
#include <string>

class TextEditor;

// A document: the file of an editor's text, and the state of that file when it was last read or
// saved. Errors are messages for the user. [ui]
class Document {
  public:
    // Creates a document without a file. `editor` is not owned and must outlive this object.
    Document(TextEditor& editor, QString name);

    // The full path of the file; empty if there is none yet.
    const std::string& path() const { return path_; }
    // See FileIdentity; empty if there is no file. As of the time when it was last read or saved.
    const std::string& identity() const { return identity_; }
    // Of the file when it was last read or saved.
    const FileStamp& stamp() const { return stamp_; }
    // The file of a board that the document was opened from; null for other documents. Such a
    // document has no path. It ends when the document is saved to a file of this computer.
    BoardFile* boardFile() { return boardFile_ ? &*boardFile_ : nullptr; }
    const BoardFile* boardFile() const { return boardFile_ ? &*boardFile_ : nullptr; }
    // The name of the file, or the one passed to the constructor.
    QString Name() const;
    // Decided by the extension of the name.
    bool IsPython() const;
    // The file types to choose from in dialogs: Python source, or any file.
    static QString FileDialogFilter();
    TextEncoding encoding() const { return encoding_; }
    void SetEncoding(TextEncoding encoding) { encoding_ = encoding; }
    // Whether there are unsaved changes.
    bool IsModified() const;
    // Marks the document as modified although the text was not edited: its file no longer exists.
    void MarkUnsaved() { unsaved_ = true; }
    // Whether the document has no file, no text and no changes, so that another may replace it.
    bool IsPristine() const;

    // The content of a file, and its stamp from before it was read.
    struct File {
        std::string path;
        LoadedText content;
        FileStamp stamp;
        std::string identity;
    };
    static std::expected<File, std::string> Read(const std::string& path);
    // Shows a file in a pristine document.
    void Load(const File& file);
    // Shows a copy of a file of a board in a pristine document.
    void LoadFromBoard(const File& copy, BoardFile file);
    // Replaces the text with the content of the file. This can be undone.
    std::expected<void, std::string> Reload();
    // Replaces the text with a copy that a crashed editor left. This can be undone. The document is
    // then modified, and changes that other programs made to the file since the copy are detected.
    void Recover(const RecoveryCopy& copy);

    // Saving: BeginSave returns the bytes to write, and once they have been written or not, EndSave
    // or AbortSave is called. Meanwhile the text may change, and the document counts as modified.
    std::expected<QByteArray, std::string> BeginSave();
    void EndSave(const std::string& path, const SavedFile& file);
    // On the board. The hash is that of the bytes.
    void EndBoardSave(const QByteArray& sha256);
    void AbortSave();
    bool IsSaving() const { return saving_; }
    // The bytes that a save would write.
    std::expected<QByteArray, std::string> Bytes() const;

    // Accepts this state of the file, so that the next save overwrites it.
    void AcceptDisk(const FileStamp& stamp) { stamp_ = stamp; }

    RecoveryCopy Copy() const;

  private:
    void Adopt(const File& file);
    void ShowLanguage();
    void SetPath(const std::string& path);

    TextEditor& editor_;
    QString name_;
    std::string path_;
    TextEncoding encoding_ = TextEncoding::Utf8;
    FileStamp stamp_;
    std::string identity_;
    std::optional<BoardFile> boardFile_;
    bool saving_ = false;
    bool unsaved_ = false;  // Modified regardless of the editor's state.
};

// The path of the file of this computer that runs: the document's own, or the copy of a board's
// file.
const std::string& RunPathOf(const Document& document);
// The name, and where the file is if it is on a board.
QString TitleOf(const Document& document);
// Where the file is, for the user; empty if there is none yet.
QString PlaceOf(const Document& document);

#pragma once

#include "scintilla.h"

#include <QStringList>

#include <vector>

class PythonLexer;

// The text of one document. Used on the user-interface thread.
class TextEditor final : public QsciScintilla {
    Q_OBJECT

  public:
    enum class Language { PlainText, Python };

    explicit TextEditor(QWidget* parent = nullptr);

    void SetLanguage(Language language);

    // The text as loaded: not modified, and no undo leads behind it. New lines end as most of its
    // lines do.
    void SetContent(const QString& text);

    // The file was changed elsewhere: one step of undo; not modified. The caret's line and what is
    // in sight stay.
    void ReplaceContent(const QString& text);

    // All of it, NUL characters too.
    QString Content() const;
    QByteArray Utf8() const;

    // Makes the selected lines comments, or no comments when all of them are.
    void ToggleComment();

    // The first line is 1; the nearest one that there is. Takes the focus.
    void GoToLine(int line);

    // From 1; a column is a character.
    int CaretLine() const;
    int CaretColumn() const;

  Q_SIGNALS:
    // The text is about to change.
    void Changing();
    // Full paths of files and folders of this machine.
    void FilesDropped(const QStringList& paths);

  protected:
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void SetUpKeys();
    void SetUpMargins();
    void FitNumberMargin();
    void FollowLineCount();
    void IndentNewLine(int character);
    bool OpensBlock(long line) const;
    std::vector<long> SelectedLines() const;
    void Comment(long position);

    PythonLexer* lexer_;  // Qt's parent owns it.
    bool isPython_ = false;
    qsizetype digits_ = 0;  // Of a line's number that the margin has place for.
};

#pragma once

#include "scintilla.h"

#include <QStringList>

#include <vector>

class GradualStyling;
class PythonLexer;

// The text view of a document. [ui]
class TextEditor final : public QsciScintilla {
    Q_OBJECT

  public:
    enum class Language { PlainText, Python };

    explicit TextEditor(QWidget* parent = nullptr);

    void SetLanguage(Language language);

    // Sets a text that was loaded. It is not modified, and undo does not go back beyond it. New
    // lines get the most frequent line ending of the text.
    void SetContent(const QString& text);

    // Replaces the text with that of a file that another program has changed. Undo reverts this in
    // one step; the text is not modified. The caret's line and the scroll position are preserved.
    void ReplaceContent(const QString& text);

    // The whole text, including NUL characters.
    QString Content() const;
    QByteArray Utf8() const;

    // Comments out the selected lines, or uncomments them if all are comments.
    void ToggleComment();

    // Replaces the selection, also with a text that was refused. Its lines get the document's
    // ending.
    void Insert(QString text);

    // Moves the caret and the focus to a line, counted from 1, or to the nearest existing line.
    void GoToLine(int line);

    // Counted from 1. Columns are characters.
    int CaretLine() const;
    int CaretColumn() const;

  Q_SIGNALS:
    // The text is about to change.
    void Changing();
    // This text was not pasted or dropped, because a line is too long to edit smoothly.
    void LongLineRefused(const QString& text) const;
    // Full paths of local files and folders.
    void FilesDropped(const QStringList& paths);

  protected:
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void SetUpKeys();
    void SetUpMargins();
    void FitNumberMargin();
    void UpdateNumberMargin();
    void IndentNewLine(int character);
    bool OpensBlock(long line) const;
    bool EndsBlock(long line) const;
    QByteArray IndentOf(long line) const;
    QByteArray IndentAround(long line) const;
    void StyleUpTo(long position) const;
    std::vector<long> SelectedLines() const;
    void Comment(long position);

    // Owned by their Qt parent.
    PythonLexer* lexer_;
    GradualStyling* styling_;
    bool isPython_ = false;
    qsizetype digits_ = 0;  // The number of digits that fit into the line-number margin.
};

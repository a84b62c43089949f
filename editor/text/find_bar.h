#pragma once

#include "text_search.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QsciScintilla;

// Finds and replaces text. Initially hidden. [ui]
class FindBar final : public QWidget {
    Q_OBJECT

  public:
    explicit FindBar(QWidget* parent = nullptr);

    // The editor to search; null for none. It may be destroyed at any time.
    void SetEditor(QsciScintilla* editor);
    QsciScintilla* editor() const { return editor_; }

    // Show the bar and move the focus to it. A selection within one line becomes the search text.
    void OpenForFind();
    void OpenForReplace();

    // Find the next match, also while the bar is hidden. At the end of the text the search wraps
    // around, which the bar reports.
    void FindNext();
    void FindPrevious();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    enum class Kind { Normal, Error };

    QWidget* MakeFindRow();
    QWidget* MakeReplaceRow();
    void Open(bool replaces);
    void Close();
    void FindWhileTyping();
    void Find(qsizetype from, bool forward);
    void Replace();
    void ReplaceAll();
    std::optional<TextSearch> Search();
    FoundText Selection() const;
    bool CanReplace();
    void ShowMessage(const QString& text, Kind kind = Kind::Normal);

    // Owned by their Qt parents.
    QLineEdit* searchText_;
    QLineEdit* replacement_;
    QCheckBox* matchCase_;
    QCheckBox* wholeWords_;
    QCheckBox* regularExpression_;
    QLabel* message_;
    QWidget* replaceRow_ = nullptr;
    QPointer<QsciScintilla> editor_;
    Kind kind_ = Kind::Normal;
};

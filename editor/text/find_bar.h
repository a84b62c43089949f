#pragma once

#include "text_search.h"

#include <QPointer>
#include <QWidget>

#include <vector>

class QCheckBox;
class QGridLayout;
class QLineEdit;
class LineLabel;
class MatchMarker;
class QsciScintilla;

// Finds and replaces text. While it is visible, all matches are marked and counted. Initially
// hidden. [ui]
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

    void MakeFindRow(QGridLayout& rows);
    void MakeReplaceRow(QGridLayout& rows);
    void MakeOptionsRow(QGridLayout& rows);
    QWidget* MakeCloseButton();
    void Open(bool replaces);
    void Close();
    void FindWhileTyping();
    void Find(qsizetype from, bool forward);
    void Replace();
    void ReplaceAll();
    std::expected<TextSearch, QString> MakeSearch() const;
    std::optional<TextSearch> Search();
    FoundText Selection() const;
    bool CanReplace();
    void ShowMessage(const QString& text, Kind kind = Kind::Normal);
    void ShowResult();
    void MarkMatches();
    QString CountText() const;

    // Owned by their Qt parents.
    QLineEdit* searchText_;
    QLineEdit* replacement_;
    QCheckBox* matchCase_;
    QCheckBox* wholeWords_;
    QCheckBox* regularExpression_;
    LineLabel* result_;
    MatchMarker* marker_;
    std::vector<QWidget*> replaceRow_;  // The widgets that are shown only for replacing.
    QPointer<QsciScintilla> editor_;
    QString message_;  // Shown instead of the count.
    Kind kind_ = Kind::Normal;
    bool hasWrapped_ = false;
};

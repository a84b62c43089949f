#pragma once

#include "text_search.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QsciScintilla;

// Finds and replaces in a text. Closed at first. Used on the user-interface thread.
class FindBar final : public QWidget {
    Q_OBJECT

  public:
    explicit FindBar(QWidget* parent = nullptr);

    // The text to search; null for none. It may be destroyed at any time.
    void SetEditor(QsciScintilla* editor);
    QsciScintilla* editor() const { return editor_; }

    // Shows the bar, which takes the focus and the selection's words when they are on one line.
    void OpenForFind();
    void OpenForReplace();

    // Also while the bar is closed. Go on at the other end, and say so in the bar.
    void FindNext();
    void FindPrevious();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    enum class Kind { Neutral, Bad };

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
    void Say(const QString& text, Kind kind = Kind::Neutral);

    // Qt's parents own these.
    QLineEdit* words_;
    QLineEdit* replacement_;
    QCheckBox* matchCase_;
    QCheckBox* wholeWords_;
    QCheckBox* regularExpression_;
    QLabel* message_;
    QWidget* replaceRow_ = nullptr;
    QPointer<QsciScintilla> editor_;
    Kind kind_ = Kind::Neutral;
};

#pragma once

#include <QPlainTextEdit>

class InputHistory;

// A text field that grows from one to six lines. Up and Down walk through a history from its first
// and last line. [ui]
class InputText final : public QPlainTextEdit {
    Q_OBJECT

  public:
    // `history` must outlive this object, or be replaced before it is destroyed.
    InputText(InputHistory& history, QWidget* parent);

    void SetHistory(InputHistory& history) { history_ = &history; }
    // The caret is at the end afterwards.
    void SetText(const QString& text);
    // A list of completions. While it is visible, Return, Tab and Escape belong to it.
    void SetList(const QWidget& list) { list_ = &list; }
    void SetTextFont(const QFont& font);
    QString TextBeforeCaret() const;

  Q_SIGNALS:
    void ReturnPressed();
    void TabPressed();
    // Control-D while the field is empty.
    void EndRequested();
    // Escape.
    void Left();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    bool HandleKey(const QKeyEvent& event);
    bool Walk(int key);
    bool IsCaretOnEdge(int key) const;
    void AddLine();
    void FitHeight();

    InputHistory* history_;
    const QWidget* list_ = nullptr;
};

#pragma once

#include <QFrame>

#include <functional>
#include <vector>

// A message with buttons, shown above the text that it concerns. Pressing a button closes it. It
// does not take the focus, so that the user does not press a button by typing. [ui]
class MessageBar final : public QFrame {
    Q_OBJECT

  public:
    struct Choice {
        QString label;
        std::function<void()> action;
    };

    explicit MessageBar(QWidget* parent);

    // Replaces the previous message.
    void ShowMessage(const QString& text, const std::vector<Choice>& choices);
    bool IsShowing() const { return !isHidden(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

#pragma once

#include <QFrame>

#include <functional>
#include <vector>

// A message above what it is about, with buttons for what can be done. Goes when one is pressed.
// Does not take the keyboard, so that nobody answers it by typing on.
class MessageBar final : public QFrame {
    Q_OBJECT

  public:
    struct Choice {
        QString label;
        std::function<void()> action;
    };

    explicit MessageBar(QWidget* parent);

    // In place of the message before.
    void Ask(const QString& text, const std::vector<Choice>& choices);
    bool IsAsking() const { return !isHidden(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

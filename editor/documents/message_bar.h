#pragma once

#include "host_messages.h"

#include <QFrame>

#include <vector>

// A message with buttons, shown above the text that it concerns. Pressing a button closes it. It
// does not take the focus, so that the user does not press a button by typing. [ui]
class MessageBar final : public QFrame {
    Q_OBJECT

  public:
    explicit MessageBar(QWidget* parent);

    // Replaces the previous message.
    void ShowMessage(const QString& text, const std::vector<MessageChoice>& choices);
    bool IsShowing() const { return !isHidden(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

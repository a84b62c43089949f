#include "message_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

MessageBar::MessageBar(QWidget* parent) : QFrame(parent)
{
    setObjectName("messageBar");
    hide();
}

void MessageBar::ShowMessage(const QString& text, const std::vector<MessageChoice>& choices)
{
    delete layout();
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 12, 6);
    auto* const label = new QLabel(text, this);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    row->addWidget(label, 1);
    for (const auto& choice : choices) {
        auto* const button = new QPushButton(choice.label, this);
        row->addWidget(button);
        // Queued: the action may show another message, which destroys the button.
        connect(
            button, &QPushButton::clicked, this,
            [this, action = choice.action] {
                hide();
                action();
            },
            Qt::QueuedConnection);
    }
    setAccessibleName(text);
    show();
}

// As in a dialog, Return presses the button that has the focus.
void MessageBar::keyPressEvent(QKeyEvent* event)
{
    auto* const button = qobject_cast<QPushButton*>(focusWidget());
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && button != nullptr && button->hasFocus()) {
        button->click();
        return;
    }
    QFrame::keyPressEvent(event);
}

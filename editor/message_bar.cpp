#include "message_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

MessageBar::MessageBar(QWidget* parent) : QFrame(parent)
{
    setObjectName("messageBar");
    hide();
}

void MessageBar::Ask(const QString& text, const std::vector<Choice>& choices)
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
        // Queued: the action may well ask the next thing, which replaces the button.
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

#include "kate_messages.h"

#include <KTextEditor/Document>
#include <KTextEditor/MainWindow>
#include <KTextEditor/Message>
#include <KTextEditor/View>

#include <QAction>
#include <QVariantMap>

#include <utility>

using KTextEditor::Message;

KateMessages::KateMessages(std::function<KTextEditor::MainWindow*()> window)
    : window_(std::move(window))
{
}

// Kate shows a text without tags as it is.
static QString ToHtml(const QString& text)
{
    return "<qt>" + text.toHtmlEscaped() + "</qt>";
}

// The choices must not be used any more.
KateMessages::~KateMessages()
{
    for (const auto& [topic, question] : questions_) {
        delete question;
    }
}

// Later, because one of its choices may be the reason.
void KateMessages::Withdraw(Topic topic)
{
    if (auto& question = questions_[topic]) {
        question->deleteLater();
        question = nullptr;
    }
}

void KateMessages::Report(const QString& message)
{
    Show(new Message(ToHtml(message), Message::Warning));
}

void KateMessages::Ask(Topic topic, const QString& question,
                       const std::vector<MessageChoice>& choices)
{
    Withdraw(topic);
    auto* const message = new Message(ToHtml(question), Message::Information);
    for (const auto& choice : choices) {
        auto* const action = new QAction(QString(choice.label).replace('&', "&&"), nullptr);
        QObject::connect(action, &QAction::triggered, choice.action);
        message->addAction(action);
    }
    questions_[topic] = message;
    Show(message);
}

// The document owns the message, until the user closes it.
void KateMessages::Show(Message* message) const
{
    auto* const window = window_();
    auto* const view = window != nullptr ? window->activeView() : nullptr;
    message->setWordWrap(true);
    if (view != nullptr) {
        message->setView(view);
        if (view->document()->postMessage(message)) {
            return;
        }
    }
    if (window != nullptr) {
        window->showMessage(
            {{"text", message->text()}, {"type", "Warning"}, {"category", "MicroPython"}});
    }
    delete message;
}

#include "kate_messages.h"

#include "output_view.h"

#include <KTextEditor/Document>
#include <KTextEditor/MainWindow>
#include <KTextEditor/Message>
#include <KTextEditor/View>

#include <QAction>

#include <utility>

using KTextEditor::Message;

KateMessages::KateMessages(std::function<KTextEditor::MainWindow*()> window, OutputView& output)
    : window_(std::move(window)), output_(output)
{
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
    Show(new Message({}, Message::Warning), message);
}

void KateMessages::Ask(Topic topic, const QString& question,
                       const std::vector<MessageChoice>& choices)
{
    Withdraw(topic);
    auto* const message = new Message({}, Message::Information);
    for (const auto& choice : choices) {
        auto* const action = new QAction(QString(choice.label).replace('&', "&&"), nullptr);
        QObject::connect(action, &QAction::triggered, choice.action);
        message->addAction(action);
    }
    questions_[topic] = message;
    Show(message, question);
}

// The document owns the message, until the user closes it.
void KateMessages::Show(Message* message, const QString& text) const
{
    auto* const window = window_();
    auto* const view = window != nullptr ? window->activeView() : nullptr;
    message->setText("<qt>" + text.toHtmlEscaped() + "</qt>");  // Without a tag it is not HTML.
    message->setWordWrap(true);
    if (view != nullptr) {
        message->setView(view);
        if (view->document()->postMessage(message)) {
            return;
        }
    }
    output_.AppendLines(text.toStdString() + "\n");
    delete message;
}

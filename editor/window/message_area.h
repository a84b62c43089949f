#pragma once

#include "host_messages.h"

#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class MessageBar;

// The messages above the documents. Each kind has its own bar, so that messages of different kinds
// do not replace one another. [ui]
class MessageArea final : public QWidget, public HostMessages {
    Q_OBJECT

  public:
    explicit MessageArea(QWidget* parent);

    // Messages that the user has not yet dismissed remain, up to a few lines.
    void Report(const QString& message) override;
    void Ask(Topic topic, const QString& question,
             const std::vector<MessageChoice>& choices) override;
    void Withdraw(Topic topic) override;

    // Asks what to do with unsaved texts of an editor that crashed.
    void OfferRecovery(const QStringList& names, const std::function<void()>& recover,
                       const std::function<void()>& discard);

    // Asks whether to open a file although a line, counted from 1, is too long to edit smoothly.
    // Files that are offered before the user answers share one question.
    void OfferLongLineFile(const QString& path, qint64 line,
                           const std::function<void(const QString& path)>& open);

    // Asks whether to insert a text with such a line.
    void OfferLongLineText(const std::function<void()>& insert);

    // Moves the focus to the first message, if there is one.
    void FocusMessage();

  private:
    MessageBar& BarOf(Topic topic) const { return topic == Topic::Upload ? *upload_ : *boards_; }

    // Owned by their Qt parents.
    MessageBar* recovery_;
    MessageBar* messages_;
    MessageBar* longLine_;
    MessageBar* upload_;
    MessageBar* boards_;
    QStringList longLineFiles_;  // Those in the question.
};

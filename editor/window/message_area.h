#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>

class MessageBar;

// The messages above the documents: one for each kind, so that none hides another of a different
// kind. Used on the user-interface thread.
class MessageArea final : public QWidget {
    Q_OBJECT

  public:
    explicit MessageArea(QWidget* parent);

    // Shows a sentence. Unread messages stay, up to a few lines.
    void Report(const QString& message);

    // Asks what to do with texts that a crash left behind.
    void OfferRecovery(const QStringList& names, const std::function<void()>& recover,
                       const std::function<void()>& discard);

    // Asks whether to open a file with a line, counted from 1, that is too long to edit smoothly.
    void OfferSlowFile(const QString& path, qint64 line, const std::function<void()>& open);

    // Moves the focus to the first message, if any.
    void FocusMessage();

  private:
    // Qt's parents own these.
    MessageBar* recovery_;
    MessageBar* messages_;
    MessageBar* slowFile_;
};

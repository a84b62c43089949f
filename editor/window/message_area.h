#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class MessageBar;
struct BoardPort;

// The messages above the documents. Each kind has its own bar, so that messages of different kinds
// do not replace one another. [ui]
class MessageArea final : public QWidget {
    Q_OBJECT

  public:
    explicit MessageArea(QWidget* parent);

    // Shows a message. Messages that the user has not yet dismissed remain, up to a few lines.
    void Report(const QString& message);

    // Asks what to do with unsaved texts of an editor that crashed.
    void OfferRecovery(const QStringList& names, const std::function<void()>& recover,
                       const std::function<void()>& discard);

    // Asks whether to open a file although a line, counted from 1, is too long to edit smoothly.
    // Files that are offered before the user answers share one question.
    void OfferLongLineFile(const QString& path, qint64 line,
                           const std::function<void(const QString& path)>& open);

    // Reports that an upload was stopped, until another one starts.
    void OfferUpload(const QString& message, const std::function<void()>& uploadAgain);
    void WithdrawUpload();

    // Offers the virtual board because no board, or not the chosen one, is attached.
    void OfferVirtualBoard(const QString& problem, const std::function<void()>& attach);
    // Asks which of several boards to use.
    void OfferBoards(const std::vector<BoardPort>& ports,
                     const std::function<void(const BoardPort& port)>& choose);
    // A board is attached, or chosen.
    void WithdrawBoards();

    // Asks whether to insert a text with such a line.
    void OfferLongLineText(const std::function<void()>& insert);

    // Moves the focus to the first message, if there is one.
    void FocusMessage();

  private:
    // Owned by their Qt parents.
    MessageBar* recovery_;
    MessageBar* messages_;
    MessageBar* longLine_;
    MessageBar* upload_;
    MessageBar* boards_;
    QStringList longLineFiles_;  // Those in the question.
};

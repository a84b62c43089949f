#pragma once

#include <QWidget>

class CommandMonitor;
class QLabel;
class QProgressBar;

// Shows what runs on the board and, for a few seconds afterwards, how it ended. [ui]
class CommandActivity final : public QWidget {
    Q_OBJECT

  public:
    // `monitor` must outlive the widget.
    CommandActivity(const CommandMonitor& monitor, QWidget* parent);

    // What is shown beside the running upload, such as "2 of 5".
    void SetUploadNote(const QString& note) { uploadNote_ = note; }

  private:
    void Show();

    const CommandMonitor& monitor_;
    QProgressBar* busy_;
    QLabel* text_;
    QString uploadNote_;
};

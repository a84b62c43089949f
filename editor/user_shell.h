#pragma once

#include "child_process.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>

class QSocketNotifier;

// Runs command lines in the user's own shell, one at a time, each in a session of its own. Used on
// the user-interface thread.
class UserShell final : public QObject {
    Q_OBJECT

  public:
    explicit UserShell(QObject* parent = nullptr);
    // Ends what runs; waits half a second for it at most.
    ~UserShell() override;

    // Runs it in this folder, once the one that runs has been stopped and has ended.
    void Run(const QString& command, const QString& folder);

    // Has everything that the command started terminate; kills what is left after half a second.
    void Stop();

    // Until Finished.
    bool IsRunning() const { return child_ || next_; }

  Q_SIGNALS:
    // What it printed, at most 64 KiB a turn of the event loop. Also a sentence about a command
    // that cannot be run.
    void Output(const std::string& bytes);
    // With the exit status, 128 and the signal's number, or 127 when it could not be run. What it
    // started in the background runs on, without a reader of its output.
    void Finished(int status);

  private:
    struct Command {
        QString line;
        QString folder;
    };

    void StartNext();
    void Follow();
    void Read();
    void LookForExit();
    void Finish();

    std::optional<Command> next_;
    std::optional<ChildProcess> child_;
    std::unique_ptr<QSocketNotifier> outputReady_;
    std::unique_ptr<QSocketNotifier> exited_;
    QTimer lookForExit_;  // Where no descriptor tells of it.
    QTimer start_;
    QTimer kill_;
    bool stopped_ = false;
};

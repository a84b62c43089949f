#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <string>

class ShellJob;

// Runs command lines in the user's own shell, one at a time, each in a session of its own. Used on
// the user-interface thread, while there is a Runtime, which stops what still runs when it shuts
// down.
class UserShell final : public QObject {
    Q_OBJECT

  public:
    explicit UserShell(QObject* parent = nullptr);
    // Stops what runs, without waiting for it.
    ~UserShell() override;

    // Runs the command in this folder, once the one that runs has been stopped and has exited.
    void Run(const QString& command, const QString& folder);

    // Terminates everything that the command started; kills what is left after half a second.
    void Stop();

  Q_SIGNALS:
    // What the command printed, at most 64 KiB at a time, or why it cannot be run.
    void Output(const std::string& bytes);
    // With the exit status, 128 plus the signal's number, or 127 when it could not be run. Programs
    // that the command started in the background keep running, without a reader of their output.
    void Finished(int status);

  private:
    std::shared_ptr<ShellJob> job_;  // The last one, also when it has ended.
};

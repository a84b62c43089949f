#pragma once

#include <QObject>
#include <QString>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

class ShellJob;

// Runs command lines in the user's shell, one at a time, each in its own session. A Runtime must
// exist; when it shuts down, it stops the running command. [ui]
class UserShell final : public QObject {
    Q_OBJECT

  public:
    static constexpr std::size_t kMaxOutput = 4'194'304;  // bytes

    explicit UserShell(QObject* parent = nullptr);
    // Stops the running command without waiting for it.
    ~UserShell() override;

    // A folder of programs that commands find before others of the same name.
    void SetProgramFolder(std::string folder) { programFolder_ = std::move(folder); }

    // Stops the running command, and runs the new one in the folder when that has exited.
    void Run(const QString& command, const QString& folder);

    // Terminates all processes of the command, and kills the remaining ones after half a second.
    void Stop();

  Q_SIGNALS:
    // Output of the command, at most kMaxOutput at a time, or the reason why it cannot be run.
    void Output(const std::string& bytes);
    // The status is the exit status, 128 plus the signal's number, or 127 if the command could not
    // be run. Background processes of the command keep running, but their output is not read.
    void Finished(int status);

  private:
    std::string programFolder_;
    std::shared_ptr<ShellJob> job_;  // The last one, even if it has finished.
};

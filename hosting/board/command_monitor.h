#pragma once

#include "board_command.h"
#include "runtime.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>
#include <string>
#include <vector>

// Knows what runs on the board, for hosts to show. Receives the Runtime's reports of commands. [ui]
class CommandMonitor final : public QObject {
    Q_OBJECT

  public:
    // `runtime` must outlive this object.
    CommandMonitor(Runtime& runtime, QObject* parent);
    ~CommandMonitor() override;

    bool IsRunning() const { return isRunning_; }
    const BoardCommand& command() const { return command_; }
    // How much of all files has been copied; none if that is unknown.
    std::optional<int> percent() const { return percent_; }
    // What runs, with the seconds once it takes long; for a few seconds afterwards, how it ended.
    QString Text() const;

  Q_SIGNALS:
    void Started();
    void Ended(const BoardCommand& command, Runtime::CommandEnd end);
    // The text has changed, or a command has started or ended.
    void Changed();
    // A command that leaves something incomplete was stopped.
    void Interrupted(const BoardCommand& command, const std::vector<std::string>& words);

  private:
    void Begin(const std::vector<std::string>& words);
    void End(const std::vector<std::string>& words, Runtime::CommandEnd end);
    void NoteProgress(Progress progress);
    void Tick();

    Runtime& runtime_;
    BoardCommand command_;
    bool isRunning_ = false;
    std::optional<int> percent_;
    QString result_;
    QElapsedTimer elapsed_;
    QTimer ticks_;
};

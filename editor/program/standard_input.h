#pragma once

#include "runtime.h"

#include <QSocketNotifier>
#include <QTimer>

#include <string>
#include <vector>

// Forwards standard input to the programs that run on the board. It is read only while one runs and
// reads; its lines end with "\r", as on a serial line, and its end is sent once as Control-D. [ui]
class StandardInput {
  public:
    // Receives the Runtime's reports of commands. `runtime` must outlive this object.
    explicit StandardInput(Runtime& runtime);
    ~StandardInput();
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

  private:
    void Begin(const std::vector<std::string>& words);
    void End();
    void Read();
    void Send();

    Runtime& runtime_;
    QSocketNotifier notifier_;
    QTimer retry_;
    std::string unsent_;
    bool hasEnded_ = false;
};

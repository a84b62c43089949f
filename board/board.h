#pragma once

#include "interpreter.h"
#include "repl.h"
#include "serial_port.h"

#include <chrono>
#include <expected>
#include <optional>
#include <string>

struct BoardOptions {
    InterpreterFiles interpreter;
    std::string folder;  // what the board's file system shows; exists
    std::string link;    // a stable path to the line-device; may be empty
};

// A MicroPython board: an interpreter behind a serial line, with a file system that is a folder.
// Everything happens on the thread that calls Run.
class Board final : private ReplTarget {
  public:
    explicit Board(BoardOptions options) : options_(std::move(options)), repl_(*this) {}

    // Connects the board: a serial line and power. The error is a sentence.
    std::expected<void, std::string> Plug();
    // Takes the board off, as a cable that is pulled: line and interpreter are gone.
    void Unplug();

    // Where a client finds the board. Only while it is plugged.
    const std::string& devicePath() const { return port_->devicePath(); }

    // Serves until a byte 'q' arrives on `commands`; 'u' unplugs and 'p' plugs the board again.
    // The error is a sentence.
    std::expected<void, std::string> Run(int commands);

  private:
    using Clock = std::chrono::steady_clock;

    void Send(std::string_view text) override;
    void Execute(SourceKind kind, std::string_view source) override;
    void RestartInterpreter() override;

    void Serve(int commands);
    void Poll(int commands);
    void ReceiveFromClient();
    void Receive(char byte);
    void InterruptProgram();
    void PassOnOutput();
    void TakeAnswer();
    void InterpreterLost(std::string_view why);
    void EndStuckProgram();
    int TimeoutMilliseconds() const;

    BoardOptions options_;
    Repl repl_;
    std::optional<SerialPort> port_;
    std::optional<Interpreter> interpreter_;
    std::optional<Clock::time_point> stuckAt_;  // An interrupt must have worked by then.
    std::string failure_;
    bool quit_ = false;
};

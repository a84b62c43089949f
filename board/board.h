#pragma once

#include "folder_guard.h"
#include "interpreter.h"
#include "pin_server.h"
#include "repl.h"
#include "serial_port.h"

#include <chrono>
#include <expected>
#include <optional>
#include <span>
#include <string>

struct BoardOptions {
    InterpreterFiles interpreter;
    std::string folder;              // The folder that is the board's file system; must exist.
    std::string link;                // A stable path that links to the serial device; may be empty.
    std::size_t heap = 256UL << 10;  // bytes of memory that programs have
};

// A MicroPython board: an interpreter that is accessed through a serial line and whose file system
// is a folder. Used on one thread.
class Board final : private ReplTarget {
  public:
    explicit Board(BoardOptions options) : options_(std::move(options)), repl_(*this) {}

    // Prepares what exists also while the board is unplugged. Must be called first. The error is a
    // sentence.
    std::expected<void, std::string> Open();
    // Serves the pins on a local socket with this path. The error is a sentence.
    std::expected<void, std::string> ServePins(const std::string& path);
    // Plugs the board in: opens the serial line and starts the interpreter, in place of those that
    // it may have. The error is a sentence.
    std::expected<void, std::string> Plug();
    // Unplugs the board: closes the serial line and stops the interpreter.
    void Unplug();

    // The path of the serial device. Must be called only while the board is plugged in.
    const std::string& devicePath() const { return port_->devicePath(); }

    // What of this computer programs can reach because the system cannot forbid it; usually empty.
    // Must be called only while the board is plugged in.
    const std::string& reachable() const { return interpreter_->reachable(); }

    // Runs the board until the byte 'q' arrives on the descriptor `commands`; 'u' unplugs the
    // board, and 'p' plugs it in again. The error is a sentence.
    std::expected<void, std::string> Run(int commands);

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr int kControlC = 3;

    void Send(std::string_view text) override;
    void Execute(SourceKind kind, std::string_view source) override;
    void RestartInterpreter() override;

    void Serve(int commands);
    void Poll(int commands);
    void ReceiveFromClient(bool isFlushed);
    void Receive(char byte);
    void SendText(std::string_view text);
    void InterruptProgram();
    void ForwardOutput();
    void ReceiveMessage();
    void OnInterpreterExited(const std::string& reason);
    void ForwardAllOutput();
    void FinishProgram(Outcome outcome, std::string_view traceback, bool restarts);
    void PlugAgain(ResetCause cause);
    bool mayChangePins() const;
    void ServePins(std::span<const pollfd> fds);
    void ResetIfStuck();
    void ResetIfOverfull();
    int TimeoutMilliseconds() const;

    BoardOptions options_;
    Repl repl_;
    std::optional<PinBlock> pins_;
    std::optional<PinServer> pinServer_;
    ResetCause resetCause_ = ResetCause::PowerOn;  // For the next interpreter.
    std::optional<SerialPort> port_;
    std::optional<Interpreter> interpreter_;
    std::optional<FolderGuard> folderGuard_;  // While the board is plugged in.
    // The program must have finished by then, since it was interrupted.
    std::optional<Clock::time_point> interruptDeadline_;
    std::string failure_;
    // Set by the program; see Message.
    int interruptCharacter_ = kControlC;
    bool hasSerialLineEndings_ = false;
    bool quit_ = false;
};

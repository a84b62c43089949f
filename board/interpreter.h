#pragma once

#include "pin_block.h"
#include "repl.h"

#include <sys/types.h>

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

// The paths of the interpreter and of the script that executes requests in it.
struct InterpreterFiles {
    std::string program;
    std::string script;
};

// A message from the interpreter: the end of a program, or one during a program.
struct Message {
    enum class Kind : char {
        Normal = 'N',  // The program has ended with this Outcome; so have the next two.
        Error = 'E',
        Exit = 'X',
        Output = 'B',  // Binary output, which follows all of the output so far; confirm it.
        // Whether the output that follows has the line endings of a serial line; confirm it.
        LineEndings = 'L',
        InterruptCharacter = 'K',  // The byte that interrupts the program from now on.
        Reset = 'R',               // The board is to be reset.
    };
    Kind kind;
    // The binary output; "1" or "0" for a change of the line endings; the number of the interrupt
    // character, negative for none; the number of the ResetCause; or a traceback, whose lines end
    // with LF.
    std::string text;
};

// A MicroPython process, which runs from one reset of the board to the next. It is killed when this
// object is destroyed or the board's process exits. Owned by the board and used on its thread.
class Interpreter {
  public:
    // Starts the process with `folder` as the board's file system and `heap` bytes of memory for
    // programs, and waits until it is confined and can execute programs, which takes a few
    // milliseconds. The process uses `pins`, which must outlive this object. The error is a
    // sentence.
    static std::expected<Interpreter, std::string> Start(const InterpreterFiles& files,
                                                         const std::string& folder,
                                                         std::size_t heap, PinBlock& pins);
    Interpreter(Interpreter&& other) noexcept;
    Interpreter& operator=(Interpreter&& other) noexcept;
    ~Interpreter();

    // What of this computer programs can reach because the system cannot forbid it; usually empty.
    const std::string& reachable() const { return reachable_; }

    // Descriptors to poll for reading: the program's output, and messages.
    int outputFd() const { return output_; }
    int messageFd() const { return control_; }

    // Starts a program. False if the process has exited.
    bool Execute(SourceKind kind, std::string_view source);
    // Whether a program is running.
    bool busy() const { return busy_; }

    // Returns the program's output that is available now; at most 64 KiB.
    std::string TakeOutput();
    // Returns the next message. Must be called when messageFd() is readable. Empty if there is
    // nothing to do; an error if the process has exited.
    std::expected<std::optional<Message>, std::string> TakeMessage();
    // Lets a program continue that has sent a message to be confirmed.
    void Confirm();

    // Adds a byte to the program's standard input, which FlushInput writes.
    void AddInput(char byte) { input_ += byte; }
    // Writes as much of the input as possible without blocking.
    void FlushInput();
    // A descriptor to poll for writing while there is input to write; otherwise -1.
    int inputFd() const { return input_.empty() ? -1 : inputWrite_; }
    // Whether so much of the input has not been read that no more should be added.
    bool isInputFull() const;
    // Returns the input that the program has not read.
    std::string TakeUnreadInput();
    // Raises KeyboardInterrupt in the running program, or as soon as it is compiled.
    void Interrupt();
    // To be called when a client has changed a pin.
    void OnPinsChanged() const;

  private:
    struct RawMessage {
        char kind;
        int sequence;
        std::string text;
    };

    Interpreter() = default;
    void Kill();
    std::expected<RawMessage, std::string> ReadMessage() const;
    std::expected<void, std::string> WaitUntilStarted();
    void OnCompiled();

    PinBlock* pins_ = nullptr;
    pid_t pid_ = -1;
    int control_ = -1;
    int output_ = -1;
    int inputRead_ = -1;
    int inputWrite_ = -1;
    std::string reachable_;
    int sequence_ = 0;
    bool busy_ = false;
    int unconfirmed_ = 0;  // The number of the message to be confirmed.
    std::string input_;    // Not yet written.
    bool isInterruptible_ = false;
    bool interruptWhenCompiled_ = false;
};

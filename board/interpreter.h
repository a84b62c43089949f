#pragma once

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

// The interpreter's answer to a request.
struct Answer {
    Outcome outcome;
    std::string traceback;  // Lines end with LF.
};

// A MicroPython process, which runs from one reset of the board to the next. It is killed when this
// object is destroyed or the board's process exits. Owned by the board and used on its thread.
class Interpreter {
  public:
    // Starts the process with `folder` as the board's file system. The error is a sentence.
    static std::expected<Interpreter, std::string> Start(const InterpreterFiles& files,
                                                         const std::string& folder);
    Interpreter(Interpreter&& other) noexcept;
    Interpreter& operator=(Interpreter&& other) noexcept;
    ~Interpreter();

    // Descriptors to poll for reading: the program's output, and the answers.
    int outputFd() const { return output_; }
    int answerFd() const { return control_; }

    // Starts a program. False if the process has exited.
    bool Execute(SourceKind kind, std::string_view source);
    // Whether a program is running.
    bool busy() const { return busy_; }
    // Whether the interpreter has finished starting.
    bool isReady() const { return ready_; }

    // Returns the program's output that is available now; at most 64 KiB.
    std::string TakeOutput();
    // Returns the answer to the running program. Must be called when answerFd() is readable. Empty
    // for the answer to an earlier request; an error if the process has exited.
    std::expected<std::optional<Answer>, std::string> TakeAnswer();

    // Writes to the program's standard input. Bytes that do not fit are lost, as on a serial line.
    void WriteInput(std::string_view bytes);
    // Returns the input that the program has not read.
    std::string TakeUnreadInput();
    // Raises KeyboardInterrupt in the running program, or as soon as the interpreter is ready.
    void Interrupt();

  private:
    Interpreter() = default;
    void Kill();

    pid_t pid_ = -1;
    int control_ = -1;
    int output_ = -1;
    int inputRead_ = -1;
    int inputWrite_ = -1;
    int sequence_ = 0;
    bool busy_ = false;
    bool ready_ = false;
    bool interruptWhenReady_ = false;
};

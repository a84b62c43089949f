#pragma once

#include "repl.h"

#include <sys/types.h>

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

// Where the interpreter and the script that serves requests in it are.
struct InterpreterFiles {
    std::string program;
    std::string script;
};

struct Answer {
    Ending ending;
    std::string traceback;  // with bare line feeds
};

// One MicroPython process, made for one life between two resets; owned by the board, used on its
// only thread. Ends (with what runs in it) with this object, and with the board's process.
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

    // Starts a program. False when the process is gone.
    bool Execute(SourceKind kind, std::string_view source);
    bool busy() const { return busy_; }
    // Whether the interpreter has ever worked.
    bool isReady() const { return ready_; }

    // What the program has printed and is there to read now; at most 64 KiB.
    std::string TakeOutput();
    // The answer to the program that runs, when answerFd() is readable. Nothing for an answer that
    // was overtaken; an error when the process has ended.
    std::expected<std::optional<Answer>, std::string> TakeAnswer();

    // Bytes for the program's standard input; what does not fit is lost, as on a serial line.
    void WriteInput(std::string_view bytes);
    // Input that the program has left unread.
    std::string TakeUnreadInput();
    // Raises KeyboardInterrupt in the program that runs; as soon as the interpreter is ready, when
    // it has only just been started.
    void Interrupt();

  private:
    Interpreter() = default;
    void End();

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

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The kinds of source text.
enum class SourceKind : char {
    Statements = 'E',       // A whole program.
    InteractiveLine = 'S',  // One line, whose value is printed.
    BoardFile = 'F',        // The name of a file on the board; a missing file counts as empty.
};

// The outcome of a program.
enum class Outcome : char {
    Normal = 'N',
    Error = 'E',  // It failed with a traceback.
    Exit = 'X',   // It called sys.exit, which resets a board.
};

// The serial line and the interpreter of one board, as a Repl uses them.
class ReplTarget {
  public:
    // Sends text over the serial line, unchanged.
    virtual void Send(std::string_view text) = 0;
    // Starts a program. When it has finished, Repl::OnProgramFinished must be called.
    virtual void Execute(SourceKind kind, std::string_view source) = 0;
    // Replaces the interpreter with a new one; a running program is aborted.
    virtual void RestartInterpreter() = 0;

  protected:
    ~ReplTarget() = default;
};

// The read-eval-print loop of a MicroPython board: the friendly mode (one line at a time, or a text
// in its paste mode), the raw mode and the raw-paste mode. It implements MicroPython's documented
// "REPL" and "raw-paste" protocols, and acts only through the target, which it does not own.
class Repl {
  public:
    explicit Repl(ReplTarget& target) : target_(target) {}

    // Powers on: runs boot.py and main.py, then shows the friendly prompt.
    void PowerOn();
    // Processes one byte from the line. Must not be called while a program runs.
    void Receive(char byte);
    // To be called when the program that was started last has finished. The lines of the traceback
    // end with LF.
    void OnProgramFinished(Outcome outcome, std::string_view traceback);

  private:
    enum class Mode : std::uint8_t { Friendly, FriendlyPaste, Raw, PasteRequest, RawPaste };
    // How much of a terminal's escape sequence has been received.
    enum class Escape : std::uint8_t { None, Begun, Sequence };
    enum class Running : std::uint8_t { Nothing, BootFile, MainFile, Program };

    void SoftReset();
    void Run(Running running, SourceKind kind, std::string_view source);
    void ReceiveFriendly(char byte);
    bool IsPartOfEscapeSequence(char byte);
    void AddToLine(char byte);
    void RemoveLastCharacter();
    void ExecuteLine();
    void ReceiveFriendlyPaste(char byte);
    void ReceiveRaw(char byte);
    void ReceivePasteRequest(char byte);
    void ReceiveRawPaste(char byte);
    void EnterRaw();
    void EnterFriendly();
    void OnCommandFinished(Outcome outcome, const std::string& traceback);
    void OnStartupFileFinished(Outcome outcome, const std::string& traceback);

    ReplTarget& target_;
    Mode mode_ = Mode::Friendly;
    Running running_ = Running::Nothing;
    Escape escape_ = Escape::None;
    std::string line_;
    std::size_t pasteWindowUsed_ = 0;
};

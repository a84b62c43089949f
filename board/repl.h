#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// How the interpreter is to take a source text.
enum class SourceKind : char {
    Statements = 'E',       // a whole program
    InteractiveLine = 'S',  // one line, whose value is printed
    BoardFile = 'F',        // the name of a file on the board; a missing file is empty
};

enum class Ending : char {
    Normal = 'N',
    Error = 'E',  // a traceback comes with it
    Exit = 'X',   // the program asked to exit, which resets a board
};

// What a Repl acts on: the serial line and the interpreter of one board.
class ReplTarget {
  public:
    // Puts text on the serial line as it stands.
    virtual void Send(std::string_view text) = 0;
    // Starts a program; Repl::ProgramEnded follows when it has ended.
    virtual void Execute(SourceKind kind, std::string_view source) = 0;
    // Begins with a fresh interpreter; a program that runs is lost.
    virtual void RestartInterpreter() = 0;

  protected:
    ~ReplTarget() = default;
};

// The command line of a MicroPython board as a serial line shows it: the friendly prompt (one line
// at a time), the raw REPL and its raw-paste mode. The bytes are those of MicroPython's documented
// "REPL" and "raw-paste" protocols. Decides only; all acts go to the target, which it does not own.
class Repl {
  public:
    explicit Repl(ReplTarget& target) : target_(target) {}

    // Power-on: boot.py, then main.py, then the friendly prompt.
    void PowerOn();
    // One byte from the line. Must not be called while a program runs.
    void Receive(char byte);
    // The program last given to the target has ended. The traceback has bare line feeds.
    void ProgramEnded(Ending ending, std::string_view traceback);

  private:
    enum class Mode : std::uint8_t { Friendly, Raw, PasteRequest, Paste };
    enum class Running : std::uint8_t { Nothing, BootFile, MainFile, Program };

    void SoftReset();
    void Run(Running what, SourceKind kind, std::string_view source);
    void ReceiveFriendly(char byte);
    void ReceiveRaw(char byte);
    void ReceivePasteRequest(char byte);
    void ReceivePaste(char byte);
    void EnterRaw();
    void EnterFriendly();
    void ProgramInFrontEnded(Ending ending, const std::string& traceback);
    void StartFileEnded(Ending ending, const std::string& traceback);

    ReplTarget& target_;
    Mode mode_ = Mode::Friendly;
    Running running_ = Running::Nothing;
    std::string line_;
    std::size_t pasteWindowUsed_ = 0;
};

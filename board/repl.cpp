#include "repl.h"

#include <utility>

#include "serial_text.h"

namespace {

constexpr char kCtrlA = '\x01';
constexpr char kCtrlB = '\x02';
constexpr char kCtrlC = '\x03';
constexpr char kCtrlD = '\x04';
constexpr char kCtrlE = '\x05';
constexpr char kBackspace = '\x08';
constexpr char kDelete = '\x7f';

constexpr std::string_view kPrompt = ">>> ";
constexpr std::string_view kRawBanner = "raw REPL; CTRL-B to exit\r\n";
constexpr std::string_view kBanner = "\r\nMicroPython on a virtual board\r\n";

// The window of raw-paste mode: the client may send this much before it is told to go on. The
// header is "R", "\x01" (supported), the window as 16-bit little endian, and "\x01" for one window
// more.
constexpr std::size_t kPasteWindow = 16384;
constexpr std::string_view kPasteHeader{"R\x01\x00\x40\x01", 5};

}  // namespace

void Repl::PowerOn()
{
    mode_ = Mode::Friendly;
    line_.clear();
    Run(Running::BootFile, SourceKind::BoardFile, "boot.py");
}

void Repl::SoftReset()
{
    target_.Send("MPY: soft reboot\r\n");
    line_.clear();
    target_.RestartInterpreter();
    Run(Running::BootFile, SourceKind::BoardFile, "boot.py");
}

void Repl::Run(Running what, SourceKind kind, std::string_view source)
{
    running_ = what;
    target_.Execute(kind, source);
}

void Repl::Receive(char byte)
{
    switch (mode_) {
        case Mode::Friendly: return ReceiveFriendly(byte);
        case Mode::Raw: return ReceiveRaw(byte);
        case Mode::PasteRequest: return ReceivePasteRequest(byte);
        case Mode::Paste: return ReceivePaste(byte);
    }
}

void Repl::ReceiveFriendly(char byte)
{
    if (byte == kCtrlA) {
        target_.Send("\r\n");
        EnterRaw();
    } else if (byte == kCtrlB) {
        EnterFriendly();
    } else if (byte == kCtrlC) {
        line_.clear();
        target_.Send("\r\n");
        target_.Send(kPrompt);
    } else if (byte == kCtrlD && line_.empty()) {
        target_.Send("\r\n");
        SoftReset();
    } else if (byte == '\r') {
        target_.Send("\r\n");
        const std::string line = std::exchange(line_, {});
        if (line.empty()) {
            target_.Send(kPrompt);
        } else {
            Run(Running::Program, SourceKind::InteractiveLine, line);
        }
    } else if (byte == kBackspace || byte == kDelete) {
        if (!line_.empty()) {
            line_.pop_back();
            target_.Send("\b \b");
        }
    } else if (static_cast<unsigned char>(byte) >= ' ') {
        line_ += byte;
        target_.Send({&byte, 1});
    }
}

void Repl::ReceiveRaw(char byte)
{
    if (byte == kCtrlA) {
        EnterRaw();
    } else if (byte == kCtrlB) {
        EnterFriendly();
    } else if (byte == kCtrlC) {
        line_.clear();
    } else if (byte == kCtrlE && line_.empty()) {
        mode_ = Mode::PasteRequest;
    } else if (byte != kCtrlD) {
        line_ += byte;
    } else if (line_.empty()) {
        target_.Send("OK\r\n");
        SoftReset();
    } else {
        target_.Send("OK");
        Run(Running::Program, SourceKind::Statements, std::exchange(line_, {}));
    }
}

// "\x05A\x01" asks for raw paste; anything else after "\x05" is answered with "not supported".
void Repl::ReceivePasteRequest(char byte)
{
    if (byte == 'A' && line_.empty()) {
        line_ += byte;
        return;
    }
    const bool granted = byte == kCtrlA && line_ == "A";
    line_.clear();
    mode_ = granted ? Mode::Paste : Mode::Raw;
    pasteWindowUsed_ = 0;
    target_.Send(granted ? kPasteHeader : std::string_view("R\x00", 2));
}

void Repl::ReceivePaste(char byte)
{
    if (byte == kCtrlC) {
        mode_ = Mode::Raw;
        line_.clear();
        target_.Send("\x04>");
    } else if (byte == kCtrlD) {
        mode_ = Mode::Raw;
        target_.Send("\x04");
        Run(Running::Program, SourceKind::Statements, std::exchange(line_, {}));
    } else {
        line_ += byte;
        if (++pasteWindowUsed_ == kPasteWindow) {
            pasteWindowUsed_ = 0;
            target_.Send("\x01");
        }
    }
}

void Repl::EnterRaw()
{
    mode_ = Mode::Raw;
    line_.clear();
    target_.Send(kRawBanner);
    target_.Send(">");
}

void Repl::EnterFriendly()
{
    mode_ = Mode::Friendly;
    line_.clear();
    target_.Send(kBanner);
    target_.Send(kPrompt);
}

void Repl::ProgramEnded(Ending ending, std::string_view traceback)
{
    const std::string text = WithSerialLineEnds(traceback);
    if (running_ == Running::Program) {
        ProgramInFrontEnded(ending, text);
    } else {
        StartFileEnded(ending, text);
    }
}

void Repl::ProgramInFrontEnded(Ending ending, const std::string& traceback)
{
    running_ = Running::Nothing;
    if (mode_ == Mode::Raw) {
        target_.Send("\x04" + traceback + "\x04");
    } else {
        target_.Send(traceback);
    }
    if (ending == Ending::Exit) {
        SoftReset();
    } else {
        target_.Send(mode_ == Mode::Raw ? ">" : kPrompt);
    }
}

// main.py follows boot.py at the friendly prompt only, and not after a boot.py that failed.
void Repl::StartFileEnded(Ending ending, const std::string& traceback)
{
    target_.Send(traceback);
    if (running_ == Running::BootFile && mode_ == Mode::Friendly && ending == Ending::Normal) {
        return Run(Running::MainFile, SourceKind::BoardFile, "main.py");
    }
    running_ = Running::Nothing;
    if (mode_ == Mode::Raw) {
        EnterRaw();
    } else {
        EnterFriendly();
    }
}

#include "repl.h"

#include <utility>

#include "serial_text.h"

namespace {

constexpr char kCtrlA = '\x01';
constexpr char kCtrlB = '\x02';
constexpr char kCtrlC = '\x03';
constexpr char kCtrlD = '\x04';
constexpr char kCtrlE = '\x05';
constexpr char kEscape = '\x1b';
constexpr char kBackspace = '\x08';
constexpr char kDelete = '\x7f';

constexpr std::string_view kPrompt = ">>> ";
constexpr std::string_view kPasteBanner = "\r\npaste mode; Ctrl-C to cancel, Ctrl-D to finish\r\n";
constexpr std::string_view kPastePrompt = "=== ";
constexpr std::string_view kRawBanner = "raw REPL; CTRL-B to exit\r\n";
constexpr std::string_view kBanner = "\r\nMicroPython on a virtual board\r\n";

// The window of raw-paste mode: the client may send this many bytes before it receives "\x01",
// which permits one window more. The header is "R", "\x01" (supported), the window as a 16-bit
// little-endian number, and "\x01".
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

void Repl::Run(Running running, SourceKind kind, std::string_view source)
{
    running_ = running;
    target_.Execute(kind, source);
}

void Repl::Receive(char byte)
{
    switch (mode_) {
        case Mode::Friendly: return ReceiveFriendly(byte);
        case Mode::FriendlyPaste: return ReceiveFriendlyPaste(byte);
        case Mode::Raw: return ReceiveRaw(byte);
        case Mode::PasteRequest: return ReceivePasteRequest(byte);
        case Mode::RawPaste: return ReceiveRawPaste(byte);
    }
}

void Repl::ReceiveFriendly(char byte)
{
    if (IsPartOfEscapeSequence(byte)) {
        return;
    }
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
    } else if (byte == kCtrlE && line_.empty()) {
        mode_ = Mode::FriendlyPaste;
        target_.Send(kPasteBanner);
        target_.Send(kPastePrompt);
    } else if (byte == '\r') {
        ExecuteLine();
    } else if (byte == kBackspace || byte == kDelete) {
        RemoveLastCharacter();
    } else if (static_cast<unsigned char>(byte) >= ' ') {
        AddToLine(byte);
    }
}

// The keys that send such a sequence, for example the arrow keys, have no function.
bool Repl::IsPartOfEscapeSequence(char byte)
{
    const auto before = std::exchange(escape_, Escape::None);
    if (byte == kEscape) {
        escape_ = Escape::Begun;
        return true;
    }
    if (before == Escape::None || static_cast<unsigned char>(byte) < ' ') {
        return false;
    }
    const bool introduces = before == Escape::Begun && (byte == '[' || byte == 'O');
    const bool continues = before == Escape::Sequence && byte < '@';  // Its parameters.
    escape_ = introduces || continues ? Escape::Sequence : Escape::None;
    return true;
}

void Repl::AddToLine(char byte)
{
    line_ += byte;
    target_.Send({&byte, 1});
}

void Repl::RemoveLastCharacter()
{
    if (line_.empty()) {
        return;
    }
    while (line_.size() > 1 && (line_.back() & 0xC0) == 0x80) {
        line_.pop_back();  // A byte of a UTF-8 character, except its first one.
    }
    line_.pop_back();
    target_.Send("\b \b");
}

void Repl::ExecuteLine()
{
    target_.Send("\r\n");
    const std::string line = std::exchange(line_, {});
    if (line.empty()) {
        target_.Send(kPrompt);
    } else {
        Run(Running::Program, SourceKind::InteractiveLine, line);
    }
}

void Repl::ReceiveFriendlyPaste(char byte)
{
    if (byte == kCtrlC) {
        mode_ = Mode::Friendly;
        line_.clear();
        target_.Send("\r\n");
        target_.Send(kPrompt);
    } else if (byte == kCtrlD) {
        mode_ = Mode::Friendly;
        target_.Send("\r\n");
        Run(Running::Program, SourceKind::Statements, std::exchange(line_, {}));
    } else if (byte == '\r') {
        line_ += '\n';
        target_.Send("\r\n");
        target_.Send(kPastePrompt);
    } else {
        AddToLine(byte);
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

// "\x05A\x01" requests raw-paste mode; anything else after "\x05" is not supported.
void Repl::ReceivePasteRequest(char byte)
{
    if (byte == 'A' && line_.empty()) {
        line_ += byte;
        return;
    }
    const bool isSupported = byte == kCtrlA && line_ == "A";
    line_.clear();
    mode_ = isSupported ? Mode::RawPaste : Mode::Raw;
    pasteWindowUsed_ = 0;
    target_.Send(isSupported ? kPasteHeader : std::string_view("R\x00", 2));
}

void Repl::ReceiveRawPaste(char byte)
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

void Repl::OnProgramFinished(Outcome outcome, std::string_view traceback)
{
    const std::string text = WithSerialLineEndings(traceback);
    if (running_ == Running::Program) {
        OnCommandFinished(outcome, text);
    } else {
        OnStartupFileFinished(outcome, text);
    }
}

void Repl::OnCommandFinished(Outcome outcome, const std::string& traceback)
{
    running_ = Running::Nothing;
    if (mode_ == Mode::Raw) {
        target_.Send("\x04" + traceback + "\x04");
    } else {
        target_.Send(traceback);
    }
    if (outcome == Outcome::Exit) {
        SoftReset();
    } else {
        target_.Send(mode_ == Mode::Raw ? ">" : kPrompt);
    }
}

// main.py runs after boot.py only in friendly mode, and not if boot.py has failed.
void Repl::OnStartupFileFinished(Outcome outcome, const std::string& traceback)
{
    target_.Send(traceback);
    if (running_ == Running::BootFile && mode_ == Mode::Friendly && outcome == Outcome::Normal) {
        return Run(Running::MainFile, SourceKind::BoardFile, "main.py");
    }
    running_ = Running::Nothing;
    if (mode_ == Mode::Raw) {
        EnterRaw();
    } else {
        EnterFriendly();
    }
}

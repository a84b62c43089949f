#include "board.h"

#include "descriptors.h"
#include "serial_text.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace {

constexpr char kInterrupt = '\x03';
constexpr std::string_view kInterruptedTraceback =
    "Traceback (most recent call last):\nKeyboardInterrupt: \n";

// An interpreter that has not come back to its loop by then hangs inside a library call; the board
// is reset. Less than the ten seconds after which mpremote gives up.
constexpr std::chrono::seconds kInterruptPatience{5};

// How often to look for a client where the system does not tell of one.
constexpr int kLookIntervalMilliseconds = 20;

}  // namespace

std::expected<void, std::string> Board::Plug()
{
    auto port = SerialPort::Open(options_.link);
    if (!port) {
        return std::unexpected(port.error());
    }
    port_.emplace(std::move(*port));
    RestartInterpreter();
    if (!failure_.empty()) {
        return std::unexpected(failure_);
    }
    repl_.PowerOn();
    return {};
}

void Board::Unplug()
{
    interpreter_.reset();
    port_.reset();
    stuckAt_.reset();
}

std::expected<void, std::string> Board::Run(int commands)
{
    while (!quit_ && failure_.empty()) {
        Poll(commands);
    }
    if (!failure_.empty()) {
        return std::unexpected(failure_);
    }
    return {};
}

void Board::Poll(int commands)
{
    std::array<pollfd, 5> fds{};
    fds[0] = {commands, POLLIN, 0};
    nfds_t count = 1;
    if (port_) {
        const short writing = port_->hasQueue() ? POLLOUT : 0;
        // Without a client the line is hung up, which would end every wait.
        fds[count++] = {port_->hasClient() ? port_->fd() : -1, static_cast<short>(POLLIN | writing),
                        0};
        fds[count++] = {port_->clientEventsFd(), POLLIN, 0};
        fds[count++] = {interpreter_->answerFd(), POLLIN, 0};
        if (!port_->isFull()) {
            fds[count++] = {interpreter_->outputFd(), POLLIN, 0};
        }
    }
    poll(fds.data(), count, TimeoutMilliseconds());
    const bool answered = port_ && (fds[3].revents & (POLLIN | POLLHUP)) != 0;
    if (port_) {
        PassOnOutput();
        if (answered) {
            TakeAnswer();
        }
        ReceiveFromClient();
        EndStuckProgram();
        port_->Flush();
    }
    Serve(commands);
}

void Board::Serve(int commands)
{
    for (const char command : ReadAvailable(commands)) {
        if (command == 'q') {
            quit_ = true;
        } else if (command == 'u') {
            Unplug();
        } else if (command == 'p' && !port_) {
            if (const auto plugged = Plug(); !plugged) {
                failure_ = plugged.error();
            }
        }
    }
}

int Board::TimeoutMilliseconds() const
{
    const bool looksForClient = port_ && !port_->hasClient() && port_->clientEventsFd() < 0;
    const int look = looksForClient ? kLookIntervalMilliseconds : -1;
    if (!stuckAt_) {
        return look;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*stuckAt_ - Clock::now());
    const int stuck = std::max(0, static_cast<int>(left.count()));
    return look < 0 ? stuck : std::min(stuck, look);
}

void Board::Send(std::string_view text)
{
    port_->Send(text);
}

void Board::Execute(SourceKind kind, std::string_view source)
{
    // A process that is gone shows itself at its answer descriptor.
    if (interpreter_) {
        std::ignore = interpreter_->Execute(kind, source);
    }
}

void Board::RestartInterpreter()
{
    stuckAt_.reset();
    interpreter_.reset();
    auto started = Interpreter::Start(options_.interpreter, options_.folder);
    if (started) {
        interpreter_.emplace(std::move(*started));
    } else {
        failure_ = started.error();
    }
}

void Board::ReceiveFromClient()
{
    for (const char byte : port_->Read()) {
        Receive(byte);
    }
}

void Board::Receive(char byte)
{
    if (!interpreter_) {
        return;  // It could not be started again; the board ends.
    }
    if (!interpreter_->busy()) {
        repl_.Receive(byte);
    } else if (byte == kInterrupt) {
        InterruptProgram();
    } else {
        interpreter_->WriteInput({&byte, 1});
    }
}

// What the program had printed and nobody has read yet would only delay the reaction.
void Board::InterruptProgram()
{
    port_->DropQueue();
    std::ignore = interpreter_->TakeOutput();
    interpreter_->Interrupt();
    if (!stuckAt_) {
        stuckAt_ = Clock::now() + kInterruptPatience;
    }
}

void Board::PassOnOutput()
{
    if (!port_->isFull()) {
        port_->Send(WithSerialLineEnds(interpreter_->TakeOutput()));
    }
}

void Board::TakeAnswer()
{
    auto answer = interpreter_->TakeAnswer();
    if (!answer) {
        return InterpreterLost(answer.error());
    }
    if (!*answer) {
        return;
    }
    // The program printed this before it ended.
    for (std::string rest = interpreter_->TakeOutput(); !rest.empty();
         rest = interpreter_->TakeOutput()) {
        port_->Send(WithSerialLineEnds(rest));
    }
    stuckAt_.reset();
    const std::string unread = interpreter_->TakeUnreadInput();
    repl_.ProgramEnded((*answer)->ending, (*answer)->traceback);
    for (const char byte : unread) {
        Receive(byte);
    }
}

void Board::InterpreterLost(std::string_view why)
{
    if (!interpreter_->isReady()) {
        failure_ = std::string(why) + " before it did anything: " + options_.interpreter.program;
        return;
    }
    const bool programRan = interpreter_->busy();
    RestartInterpreter();
    if (programRan && failure_.empty()) {
        repl_.ProgramEnded(Ending::Error, std::string(why) + "\n");
    }
}

void Board::EndStuckProgram()
{
    if (stuckAt_ && Clock::now() >= *stuckAt_) {
        const std::string unread = interpreter_->TakeUnreadInput();
        RestartInterpreter();
        repl_.ProgramEnded(Ending::Error, kInterruptedTraceback);
        for (const char byte : unread) {
            Receive(byte);
        }
    }
}

#include "board.h"

#include "descriptors.h"
#include "serial_text.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view kInterruptedTraceback =
    "Traceback (most recent call last):\nKeyboardInterrupt: \n";

// After this time, an interrupted interpreter is considered to hang in a library call, and the
// board is reset. It is less than mpremote's timeout of ten seconds.
constexpr std::chrono::seconds kInterruptTimeout{5};

// How often to check for a client if the system does not report one.
constexpr std::chrono::milliseconds kPollInterval{20};

}  // namespace

std::expected<void, std::string> Board::Open()
{
    auto pins = PinBlock::Create();
    if (!pins) {
        return std::unexpected(pins.error());
    }
    pins_.emplace(std::move(*pins));
    return {};
}

std::expected<void, std::string> Board::ServePins(const std::string& path)
{
    auto server = PinServer::Listen(path);
    if (!server) {
        return std::unexpected(server.error());
    }
    pinServer_.emplace(std::move(*server));
    return {};
}

std::expected<void, std::string> Board::Plug()
{
    auto port = SerialPort::Open(options_.link);
    if (!port) {
        return std::unexpected(port.error());
    }
    if (port_) {
        port_->LeaveLink();  // It refers to the new device by now.
    }
    port_.reset();
    port_.emplace(std::move(*port));
    if (!folderGuard_) {  // Otherwise a program that resets the board could use the disk up.
        folderGuard_.emplace(options_.folder);
    }
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
    folderGuard_.reset();
    interruptDeadline_.reset();
    resetCause_ = ResetCause::PowerOn;
    pins_->Reset(resetCause_);
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
    std::vector<pollfd> fds(6, {-1, POLLIN, 0});
    if (pinServer_) {
        pinServer_->AddTo(fds);
    }
    pollfd &command = fds[0], &line = fds[1], &client = fds[2], &message = fds[3], &output = fds[4],
           &input = fds[5];
    command.fd = commands;
    if (port_) {
        const int reading = interpreter_->isInputFull() ? POLLPRI : POLLIN | POLLPRI;
        const int writing = port_->hasQueue() ? POLLOUT : 0;
        // Without a client the line is hung up, so poll would return immediately.
        line = {port_->hasClient() ? port_->fd() : -1, static_cast<short>(reading | writing), 0};
        client.fd = port_->clientEventsFd();
        if (!port_->isFull()) {
            message.fd = interpreter_->messageFd();
            output.fd = interpreter_->outputFd();
        }
        input = {interpreter_->inputFd(), POLLOUT, 0};
    }
    poll(fds.data(), fds.size(), TimeoutMilliseconds());
    ServePins(std::span(fds).subspan(6));
    if (port_) {
        ForwardOutput();
        if ((message.revents & (POLLIN | POLLHUP)) != 0) {
            ReceiveMessage();
        }
        ReceiveFromClient((line.revents & POLLPRI) != 0);
        ResetIfStuck();
        ResetIfOverfull();
        port_->Flush();
        if (interpreter_) {
            interpreter_->FlushInput();
        }
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
            PlugAgain(ResetCause::PowerOn);
        }
    }
}

int Board::TimeoutMilliseconds() const
{
    std::optional<Clock::time_point> next = interruptDeadline_;
    const auto consider = [&](Clock::time_point time) {
        next = std::min(next.value_or(time), time);
    };
    if (port_) {
        consider(folderGuard_->nextCheck());
        if (!port_->hasClient() && port_->clientEventsFd() < 0) {
            consider(Clock::now() + kPollInterval);
        }
    }
    if (const auto update = pinServer_ ? pinServer_->nextUpdate(mayChangePins()) : std::nullopt) {
        consider(*update);
    }
    if (!next) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
    return std::max(0, static_cast<int>(left.count()));
}

// While no program runs, only its timers and interrupts could change a pin.
bool Board::mayChangePins() const
{
    return interpreter_ && (interpreter_->busy() || pins_->hasEvents());
}

void Board::ServePins(std::span<const pollfd> fds)
{
    const bool isChanged = pinServer_ && pinServer_->Serve(fds, *pins_, mayChangePins());
    if (isChanged && interpreter_) {
        interpreter_->OnPinsChanged();
    }
}

void Board::Send(std::string_view text)
{
    port_->Send(text);
}

void Board::Execute(SourceKind kind, std::string_view source)
{
    interruptCharacter_ = kControlC;
    hasSerialLineEndings_ = false;
    // If the process has exited, its answer descriptor reports that.
    if (interpreter_) {
        std::ignore = interpreter_->Execute(kind, source);
    }
}

void Board::RestartInterpreter()
{
    interruptDeadline_.reset();
    interpreter_.reset();
    pins_->Reset(std::exchange(resetCause_, ResetCause::Soft));
    auto started = Interpreter::Start(options_.interpreter, options_.folder, options_.heap, *pins_);
    if (started) {
        interpreter_.emplace(std::move(*started));
    } else {
        failure_ = started.error();
    }
}

// Bytes that the program is not ready to read wait on the line. Neither they nor another interrupt
// character keep a new client, or one that discards unsent bytes, from interrupting the program.
void Board::ReceiveFromClient(bool isFlushed)
{
    const bool isFull = interpreter_ && interpreter_->isInputFull();
    if (isFull && !isFlushed) {
        return port_->CheckForClient();
    }
    const std::string bytes = port_->Read();
    if (port_->TakeFlushed()) {
        interruptCharacter_ = kControlC;
        if (isFull) {
            std::ignore = interpreter_->TakeUnreadInput();
        }
    }
    for (const char byte : bytes) {
        Receive(byte);
    }
}

void Board::Receive(char byte)
{
    if (!interpreter_) {
        return;  // It could not be restarted; the board is about to exit.
    }
    if (!interpreter_->busy()) {
        repl_.Receive(byte);
    } else if (static_cast<unsigned char>(byte) == interruptCharacter_) {
        InterruptProgram();
    } else {
        interpreter_->AddInput(byte);
    }
}

// Discards unread output and input first, which would only delay the reaction.
void Board::InterruptProgram()
{
    port_->DropQueue();
    std::ignore = interpreter_->TakeOutput();
    std::ignore = interpreter_->TakeUnreadInput();
    interpreter_->Interrupt();
    if (!interruptDeadline_) {
        interruptDeadline_ = Clock::now() + kInterruptTimeout;
    }
}

void Board::ForwardOutput()
{
    if (!port_->isFull()) {
        SendText(interpreter_->TakeOutput());
    }
}

void Board::SendText(std::string_view text)
{
    if (hasSerialLineEndings_) {
        port_->Send(text);
    } else {
        port_->Send(WithSerialLineEndings(text));
    }
}

void Board::ReceiveMessage()
{
    auto message = interpreter_->TakeMessage();
    if (!message) {
        return OnInterpreterExited(message.error());
    }
    if (!*message) {
        return;
    }
    ForwardAllOutput();  // The program printed this before it sent the message.
    const auto& [kind, text] = **message;
    if (kind == Message::Kind::Output) {
        port_->Send(text);
        interpreter_->Confirm();
    } else if (kind == Message::Kind::LineEndings) {
        hasSerialLineEndings_ = text == "1";
        interpreter_->Confirm();
    } else if (kind == Message::Kind::InterruptCharacter) {
        interruptCharacter_ = std::atoi(text.c_str());
    } else if (kind == Message::Kind::Reset) {
        PlugAgain(static_cast<ResetCause>(std::atoi(text.c_str())));
    } else {
        FinishProgram(static_cast<Outcome>(kind), text, false);
    }
}

// An interrupted interpreter may be unable to go on, as it can interrupt a garbage collection.
void Board::OnInterpreterExited(const std::string& reason)
{
    if (interpreter_->busy()) {
        const bool wasInterrupted = interruptDeadline_.has_value();
        FinishProgram(Outcome::Error, wasInterrupted ? kInterruptedTraceback : reason + "\n", true);
    } else {
        RestartInterpreter();
    }
}

void Board::ForwardAllOutput()
{
    for (std::string rest = interpreter_->TakeOutput(); !rest.empty();
         rest = interpreter_->TakeOutput()) {
        SendText(rest);
    }
}

// The board itself receives the input that the program has not read.
void Board::FinishProgram(Outcome outcome, std::string_view traceback, bool restarts)
{
    interruptDeadline_.reset();
    pins_->CancelInterrupt();
    const std::string unread = interpreter_->TakeUnreadInput();
    if (restarts) {
        RestartInterpreter();
    }
    if (failure_.empty()) {
        repl_.OnProgramFinished(outcome, traceback);
    }
    for (const char byte : unread) {
        Receive(byte);
    }
}

void Board::PlugAgain(ResetCause cause)
{
    resetCause_ = cause;
    if (const auto plugged = Plug(); !plugged) {
        failure_ = plugged.error();
    }
}

void Board::ResetIfStuck()
{
    if (interruptDeadline_ && Clock::now() >= *interruptDeadline_) {
        FinishProgram(Outcome::Error, kInterruptedTraceback, true);
    }
}

void Board::ResetIfOverfull()
{
    if (!folderGuard_->IsOverfull()) {
        return;
    }
    constexpr std::string_view reason = "the board's files are larger than its flash";
    if (interpreter_ && interpreter_->busy()) {
        FinishProgram(Outcome::Error, std::string(reason) + "\n", true);
    } else {
        RestartInterpreter();
    }
}

#include "interpreter.h"

#include "descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t kHeaderSize = 18;
constexpr char kCompiled = 'C';
constexpr std::size_t kMaxText = 1'000'000;  // bytes
constexpr std::size_t kMaxInput = 16384;     // bytes, in addition to those in the pipe
constexpr int kStartTimeoutMilliseconds = 5000;
constexpr const char* kHeapSize = "heapsize=4m";

struct Pipes {
    std::array<int, 2> input{-1, -1};
    std::array<int, 2> output{-1, -1};
    std::array<int, 2> control{-1, -1};
};

std::optional<Pipes> MakePipes()
{
    Pipes pipes;
    if (MakePipe(pipes.input) && MakePipe(pipes.output) &&
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pipes.control.data()) == 0) {
        // With a small pipe, little output is in transit, so an interrupt takes effect at once.
        SetPipeCapacity(pipes.output[1], 4096);
        SetNonBlocking(pipes.input[1]);
        return pipes;
    }
    for (const auto& pair : {pipes.input, pipes.output, pipes.control}) {
        CloseDescriptor(pair[0]);
        CloseDescriptor(pair[1]);
    }
    return std::nullopt;
}

// Called in the child process between fork and exec: only async-signal-safe calls are allowed.
[[noreturn]] void BecomeInterpreter(pid_t parent, const Pipes& pipes, int pins,
                                    const char* const* arguments)
{
    SignalOnParentExit(parent, SIGKILL);
    // In a group of its own, so that signals to the board's group do not reach it. Those that were
    // sent meanwhile are discarded by ignoring them.
    setpgid(0, 0);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2}) {
        signal(number, SIG_IGN);
        signal(number, SIG_DFL);
    }
    // One of the descriptors may have the number that another one gets.
    pins = fcntl(pins, F_DUPFD, 5);
    dup2(pipes.input[0], STDIN_FILENO);
    dup2(pipes.output[1], STDOUT_FILENO);
    dup2(pipes.output[1], STDERR_FILENO);
    dup2(pipes.control[1], 3);
    dup2(pins, 4);
    close(pins);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int number : {SIGPIPE, SIGXFSZ}) {
        signal(number, SIG_DFL);
    }
    execv(arguments[0], const_cast<char* const*>(arguments));
    _exit(127);
}

bool ReadFully(int fd, char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = read(fd, data, size);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

bool SendFully(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t n = send(fd, data.data(), data.size(), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        data.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

std::string Header(char mode, int sequence, std::size_t length)
{
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%c%08d %08zu", mode, sequence, length);
    return {text.data(), kHeaderSize};
}

}  // namespace

std::expected<Interpreter, std::string> Interpreter::Start(const InterpreterFiles& files,
                                                           const std::string& folder,
                                                           PinBlock& pins)
{
    const auto pipes = MakePipes();
    if (!pipes) {
        return std::unexpected(std::string("cannot create pipes: ") + std::strerror(errno));
    }
    const std::array<const char*, 6> arguments{files.program.c_str(), "-X",           kHeapSize,
                                               files.script.c_str(),  folder.c_str(), nullptr};
    Interpreter self;
    self.pins_ = &pins;
    const pid_t parent = getpid();
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before);  // The child must not run this process's handlers.
    self.pid_ = fork();
    if (self.pid_ == 0) {
        BecomeInterpreter(parent, *pipes, pins.fd(), arguments.data());
    }
    const int forkError = errno;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    CloseDescriptor(pipes->control[1]);
    CloseDescriptor(pipes->output[1]);
    self.control_ = pipes->control[0];
    self.output_ = pipes->output[0];
    self.inputRead_ = pipes->input[0];
    self.inputWrite_ = pipes->input[1];
    if (self.pid_ < 0) {
        return std::unexpected(std::string("cannot start a process: ") + std::strerror(forkError));
    }
    if (const auto started = self.WaitUntilStarted(); !started) {
        return std::unexpected(files.program + " does not start: " + started.error());
    }
    return self;
}

std::expected<void, std::string> Interpreter::WaitUntilStarted()
{
    pollfd message{control_, POLLIN, 0};
    int count = 0;
    while ((count = poll(&message, 1, kStartTimeoutMilliseconds)) < 0 && errno == EINTR) {
    }
    if (count == 0) {
        return std::unexpected("it does not answer");
    }
    const auto answer = TakeMessage();
    if (answer) {
        return {};
    }
    std::string printed = TakeOutput();
    while (printed.ends_with('\n')) {
        printed.pop_back();
    }
    // The last line of a traceback names the error.
    return std::unexpected(printed.empty() ? answer.error()
                                           : printed.substr(printed.rfind('\n') + 1));
}

Interpreter::Interpreter(Interpreter&& other) noexcept
{
    *this = std::move(other);
}

Interpreter& Interpreter::operator=(Interpreter&& other) noexcept
{
    if (this != &other) {
        Kill();
        pins_ = other.pins_;
        pid_ = std::exchange(other.pid_, -1);
        control_ = std::exchange(other.control_, -1);
        output_ = std::exchange(other.output_, -1);
        inputRead_ = std::exchange(other.inputRead_, -1);
        inputWrite_ = std::exchange(other.inputWrite_, -1);
        sequence_ = other.sequence_;
        busy_ = other.busy_;
        unconfirmed_ = other.unconfirmed_;
        input_ = std::move(other.input_);
        isInterruptible_ = other.isInterruptible_;
        interruptWhenCompiled_ = other.interruptWhenCompiled_;
    }
    return *this;
}

Interpreter::~Interpreter()
{
    Kill();
}

void Interpreter::Kill()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
        }
        pid_ = -1;
    }
    for (int* fd : {&control_, &output_, &inputRead_, &inputWrite_}) {
        CloseDescriptor(std::exchange(*fd, -1));
    }
}

bool Interpreter::Execute(SourceKind kind, std::string_view source)
{
    ++sequence_;
    busy_ = true;
    isInterruptible_ = false;
    interruptWhenCompiled_ = false;
    return SendFully(control_, Header(static_cast<char>(kind), sequence_, source.size())) &&
           SendFully(control_, source);
}

std::string Interpreter::TakeOutput()
{
    return ReadAvailable(output_);
}

std::expected<std::optional<Message>, std::string> Interpreter::TakeMessage()
{
    std::array<char, kHeaderSize> header{};
    int sequence = 0;
    std::size_t length = 0;
    if (!ReadFully(control_, header.data(), header.size())) {
        return std::unexpected("the interpreter has exited");
    }
    std::from_chars(header.data() + 1, header.data() + 9, sequence);
    std::from_chars(header.data() + 10, header.data() + kHeaderSize, length);
    std::string text(std::min(length, kMaxText), '\0');
    if (!ReadFully(control_, text.data(), text.size())) {
        return std::unexpected("the interpreter has exited");
    }
    const auto kind = static_cast<Message::Kind>(header[0]);
    if (kind == Message::Kind::Output || kind == Message::Kind::LineEndings) {
        unconfirmed_ = sequence;
    } else if (kind != Message::Kind::Reset && kind != Message::Kind::InterruptCharacter) {
        if (sequence != sequence_ || !busy_) {
            return std::nullopt;  // The first answer, or one that an interrupt has doubled.
        }
        if (header[0] == kCompiled) {
            OnCompiled();
            return std::nullopt;
        }
        busy_ = false;
    }
    return Message{kind, std::move(text)};
}

// Before, an interrupt could get between the interpreter and the request that it is reading.
void Interpreter::OnCompiled()
{
    isInterruptible_ = true;
    if (interruptWhenCompiled_) {
        Interrupt();
    }
}

void Interpreter::Confirm()
{
    std::ignore =
        SendFully(control_, Header(static_cast<char>(Message::Kind::Output), unconfirmed_, 0));
}

void Interpreter::FlushInput()
{
    const ssize_t n = input_.empty() ? 0 : write(inputWrite_, input_.data(), input_.size());
    input_.erase(0, n > 0 ? static_cast<std::size_t>(n) : 0);
}

bool Interpreter::isInputFull() const
{
    return input_.size() > kMaxInput;
}

std::string Interpreter::TakeUnreadInput()
{
    return ReadAvailable(inputRead_) + std::exchange(input_, {});
}

void Interpreter::Interrupt()
{
    if (isInterruptible_ && pins_->hasEvents()) {
        pins_->RequestInterrupt();
        kill(pid_, SIGALRM);
    } else if (isInterruptible_) {
        kill(pid_, SIGINT);
    } else {
        interruptWhenCompiled_ = true;
    }
}

void Interpreter::OnPinsChanged() const
{
    if (pins_->hasEvents()) {
        kill(pid_, SIGALRM);
    }
}

#include "interpreter.h"

#include "confinement.h"
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
#include <chrono>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t kHeaderSize = 18;
constexpr char kCompiled = 'C';
constexpr std::size_t kMaxText = 1'000'000;     // bytes
constexpr std::size_t kFlashSize = 16UL << 20;  // bytes, as in flash.py
constexpr std::size_t kMaxInput = 16384;        // bytes, in addition to those in the pipe
constexpr int kStartTimeoutMilliseconds = 5000;
constexpr std::chrono::seconds kMessageTimeout{2};
constexpr char kConfine = 'P';
constexpr std::size_t kHeapOfBoard = 36UL << 10;  // bytes that the board's own script takes
// What the interpreter needs besides the heap, for its code, its stack and the stacks of threads.
constexpr std::size_t kMemoryBesidesHeap = 64UL << 20;

struct Pipes {
    std::array<int, 2> input{-1, -1};
    std::array<int, 2> output{-1, -1};
    std::array<int, 2> control{-1, -1};
};

// How a child process becomes an interpreter.
struct Command {
    std::array<const char*, 7> arguments;
    int pins;            // A descriptor to leave open.
    int fileRules;       // Likewise; -1 if there is none.
    std::size_t memory;  // bytes of address space
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
[[noreturn]] void BecomeInterpreter(pid_t parent, const Pipes& pipes, const Command& command)
{
    SignalOnParentExit(parent, SIGKILL);
    // In a group of its own, so that signals to the board's group do not reach it. Those that were
    // sent meanwhile are discarded by ignoring them.
    setpgid(0, 0);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2}) {
        signal(number, SIG_IGN);
        signal(number, SIG_DFL);
    }
    dup2(pipes.input[0], STDIN_FILENO);
    dup2(pipes.output[1], STDOUT_FILENO);
    dup2(pipes.output[1], STDERR_FILENO);
    dup2(pipes.control[1], 3);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    LimitResources(command.memory, kFlashSize);
    fcntl(command.pins, F_SETFD, 0);
    fcntl(command.fileRules, F_SETFD, 0);
    // The environment is no business of a board. Threads share one pool of memory, since each pool
    // would reserve more than the limit.
    std::array<char, 19> onePool{"MALLOC_ARENA_MAX=1"};
    const std::array<char*, 2> environment{onePool.data(), nullptr};
    const auto& arguments = command.arguments;
    execve(arguments[0], const_cast<char* const*>(arguments.data()), environment.data());
    _exit(127);
}

using Clock = std::chrono::steady_clock;

// False at the deadline: a program can also keep its process from sending or receiving the rest.
bool WaitFor(int fd, short events, Clock::time_point deadline)
{
    pollfd ready{fd, events, 0};
    int count = 0;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        count = left.count() < 0 ? 0 : poll(&ready, 1, static_cast<int>(left.count()));
    } while (count < 0 && errno == EINTR);
    return count > 0;
}

bool ReadFully(int fd, char* data, std::size_t size)
{
    const auto deadline = Clock::now() + kMessageTimeout;
    while (size > 0) {
        const ssize_t n = WaitFor(fd, POLLIN, deadline) ? recv(fd, data, size, MSG_DONTWAIT) : 0;
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) {
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
    const auto deadline = Clock::now() + kMessageTimeout;
    while (!data.empty()) {
        const ssize_t n = WaitFor(fd, POLLOUT, deadline)
                              ? send(fd, data.data(), data.size(), MSG_NOSIGNAL | MSG_DONTWAIT)
                              : 0;
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        data.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

// Opens a pipe again, with flags of its own: the program may take the bytes that poll has
// announced, and then reading must not wait.
int OpenNonBlocking(int pipe)
{
    const std::string path = "/dev/fd/" + std::to_string(pipe);
    return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
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
                                                           std::size_t heap, PinBlock& pins)
{
    const auto pipes = MakePipes();
    if (!pipes) {
        return std::unexpected(std::string("cannot create pipes: ") + std::strerror(errno));
    }
    const std::string heapSize = "heapsize=" + std::to_string(heap + kHeapOfBoard);
    const std::string modules = files.script.substr(0, files.script.rfind('/')) + "/modules";
    const std::string pinsDescriptor = std::to_string(pins.fd());
    const Command command{{files.program.c_str(), "-X", heapSize.c_str(), files.script.c_str(),
                           folder.c_str(), pinsDescriptor.c_str(), nullptr},
                          pins.fd(),
                          MakeFileRules(folder, modules),
                          heap + kMemoryBesidesHeap};
    Interpreter self;
    self.pins_ = &pins;
    const pid_t parent = getpid();
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before);  // The child must not run this process's handlers.
    self.pid_ = fork();
    if (self.pid_ == 0) {
        BecomeInterpreter(parent, *pipes, command);
    }
    const int forkError = errno;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    CloseDescriptor(pipes->control[1]);
    CloseDescriptor(pipes->output[1]);
    CloseDescriptor(command.fileRules);
    self.control_ = pipes->control[0];
    self.output_ = pipes->output[0];
    self.inputRead_ = OpenNonBlocking(pipes->input[0]);
    CloseDescriptor(pipes->input[0]);
    self.inputWrite_ = pipes->input[1];
    if (self.pid_ < 0) {
        return std::unexpected(std::string("cannot start a process: ") + std::strerror(forkError));
    }
    const std::string filter = MakeSystemCallFilter(self.pid_);
    std::ignore =
        SendFully(self.control_, Header(kConfine, command.fileRules, filter.size()) + filter);
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
    const auto answer = ReadMessage();
    if (answer) {
        reachable_ = answer->text;
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
        reachable_ = std::move(other.reachable_);
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

std::expected<Interpreter::RawMessage, std::string> Interpreter::ReadMessage() const
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
    return RawMessage{header[0], sequence, std::move(text)};
}

std::expected<std::optional<Message>, std::string> Interpreter::TakeMessage()
{
    auto message = ReadMessage();
    if (!message) {
        return std::unexpected(message.error());
    }
    auto& [letter, sequence, text] = *message;
    const auto kind = static_cast<Message::Kind>(letter);
    if (kind == Message::Kind::Output || kind == Message::Kind::LineEndings) {
        unconfirmed_ = sequence;
    } else if (kind != Message::Kind::Reset && kind != Message::Kind::InterruptCharacter) {
        if (sequence != sequence_ || !busy_) {
            return std::nullopt;  // An answer that an interrupt has doubled.
        }
        if (letter == kCompiled) {
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

#include "child_process.h"

#include "descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/syscall.h>
#endif

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

std::vector<char*> AsArguments(const std::vector<std::string>& words)
{
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (const auto& word : words) {
        pointers.push_back(const_cast<char*>(word.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

// The attributes of the new process: its descriptors, its session, and default signal handling,
// whatever the calling thread has blocked or ignored.
class SpawnSettings {
  public:
    // An `input` of -1 stands for an empty one, an `extra` of -1 for none.
    SpawnSettings(int input, int output, int extra, const std::string& folder)
    {
        posix_spawn_file_actions_init(&actions);
        if (input < 0) {
            posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        } else {
            posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
        }
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
        if (extra >= 0) {
            // Last, because another of these descriptors may have this number.
            posix_spawn_file_actions_adddup2(&actions, extra, ChildProcess::kExtraDescriptor);
        }
        if (!folder.empty()) {
            posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
        }
        sigset_t none;
        sigemptyset(&none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

int OpenProcessDescriptor([[maybe_unused]] pid_t pid)
{
#ifdef SYS_pidfd_open
    return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
#else
    return -1;
#endif
}

}  // namespace

std::expected<ChildProcess, std::string> ChildProcess::Start(
    const std::vector<std::string>& words, const std::vector<std::string>& environment,
    const std::string& folder, Input input, int extra)
{
    ChildProcess child;
    std::array<int, 2> inputPipe{-1, -1};
    std::array<int, 2> pipe{-1, -1};
    const bool hasPipes = (input == Input::Empty || MakePipe(inputPipe)) && MakePipe(pipe);
    child.input_ = inputPipe[1];
    child.output_ = pipe[0];
    if (!hasPipes) {
        CloseDescriptor(inputPipe[0]);
        return std::unexpected(words.front() + ": " + std::strerror(errno));
    }
    SetNonBlocking(child.input_);
    const SpawnSettings settings(inputPipe[0], pipe[1], extra, folder);
    const int error =
        posix_spawnp(&child.pid_, words.front().c_str(), &settings.actions, &settings.attributes,
                     AsArguments(words).data(), AsArguments(environment).data());
    CloseDescriptor(inputPipe[0]);
    CloseDescriptor(pipe[1]);
    if (error != 0) {
        child.pid_ = -1;
        return std::unexpected(words.front() + ": " + std::strerror(error));
    }
    child.exit_ = OpenProcessDescriptor(child.pid_);
    return child;
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      input_(std::exchange(other.input_, -1)),
      output_(std::exchange(other.output_, -1)),
      exit_(std::exchange(other.exit_, -1))
{
}

ChildProcess::~ChildProcess()
{
    CloseDescriptor(input_);
    CloseDescriptor(output_);
    CloseDescriptor(exit_);
}

bool ChildProcess::HasExited() const
{
    siginfo_t info{};
    if (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
        return errno == ECHILD;
    }
    return info.si_pid == pid_;
}

void ChildProcess::SignalGroup(int number) const
{
    kill(-pid_, number);
}

int ChildProcess::Reap()
{
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void ChildProcess::Terminate(std::chrono::milliseconds timeout)
{
    if (pid_ < 0) {
        return;
    }
    SignalGroup(SIGTERM);
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (!HasExited() && std::chrono::steady_clock::now() < end) {
        pollfd exited{exit_, POLLIN, 0};
        poll(&exited, 1, 10);
    }
    SignalGroup(SIGKILL);
    Reap();
}

std::vector<std::string> CurrentEnvironment()
{
    std::vector<std::string> words;
    for (char** word = environ; *word != nullptr; ++word) {
        words.emplace_back(*word);
    }
    return words;
}

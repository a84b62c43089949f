#include "subprocess.h"

#include "descriptors.h"

#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>

#include <stdexcept>

namespace {

using Clock = std::chrono::steady_clock;

ChildProcess StartOrThrow(const std::vector<std::string>& words,
                          const std::vector<std::string>& variables)
{
    auto environment = CurrentEnvironment();
    // The first of two variables of one name is used.
    environment.insert(environment.begin(), variables.begin(), variables.end());
    auto process = ChildProcess::Start(words, environment);
    if (!process) {
        throw std::runtime_error(process.error());
    }
    return std::move(*process);
}

// False at the end of the output.
bool ReadMore(const ChildProcess& process, std::string& output)
{
    pollfd readable{process.outputFd(), POLLIN, 0};
    poll(&readable, 1, 20);
    const std::string bytes = ReadAvailable(process.outputFd());
    output += bytes;
    return !bytes.empty() || (readable.revents & POLLHUP) == 0;
}

}  // namespace

ProgramResult RunProgram(const std::vector<std::string>& words,
                         const std::vector<std::string>& variables)
{
    ChildProcess process = StartOrThrow(words, variables);
    ProgramResult result;
    const auto end = Clock::now() + std::chrono::minutes(1);
    while (ReadMore(process, result.output)) {
        if (Clock::now() >= end) {
            process.SignalGroup(SIGKILL);
        }
    }
    result.status = process.Reap();
    return result;
}

BackgroundProgram::BackgroundProgram(const std::vector<std::string>& words,
                                     const std::vector<std::string>& variables)
    : process_(StartOrThrow(words, variables))
{
}

BackgroundProgram::~BackgroundProgram()
{
    process_.Terminate(std::chrono::seconds(2));
}

bool BackgroundProgram::WaitForOutput(const std::string& text)
{
    const auto end = Clock::now() + std::chrono::seconds(20);
    const auto hasArrived = [&] { return output_.find(text) != std::string::npos; };
    while (!hasArrived() && Clock::now() < end && ReadMore(process_, output_)) {
    }
    return hasArrived();
}

bool BackgroundProgram::IsPipeFull() const
{
    int bytes = 0;
    ioctl(process_.outputFd(), FIONREAD, &bytes);
    return bytes > 60'000;  // Of 64 KiB; parts of its pages may be unused.
}

bool BackgroundProgram::WaitForExit(std::chrono::milliseconds patience)
{
    const auto end = Clock::now() + patience;
    while (!process_.HasExited() && Clock::now() < end) {
        ReadMore(process_, output_);
    }
    return process_.HasExited();
}

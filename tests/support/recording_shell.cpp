#include "recording_shell.h"

#include "SimpleShell.h"

#include <utility>

namespace {

std::vector<std::string> calls;
std::function<void(std::string&&)> print;
unique_function<void()> done;

}  // namespace

struct SimpleShell::State {};

SimpleShell::SimpleShell(std::function<void(std::string&&)> onOutput, const std::string& label)
{
    calls.push_back("new " + label);
    print = std::move(onOutput);
}

SimpleShell::~SimpleShell()
{
    calls.emplace_back("release");
}

void SimpleShell::Run(const std::string& commandLine, unique_function<void()>&& itsDone)
{
    calls.push_back("run " + commandLine);
    done = std::move(itsDone);
}

void SimpleShell::Stop()
{
    calls.emplace_back("stop");
    done = {};
}

std::vector<std::string> shells::TakeCalls()
{
    return std::exchange(calls, {});
}

void shells::Print(std::string piece)
{
    print(std::move(piece));
}

void shells::Finish()
{
    if (auto itsDone = std::exchange(done, {})) {
        itsDone();
    }
}

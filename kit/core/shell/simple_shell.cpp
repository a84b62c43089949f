#include "SimpleShell.h"

#include "command_line.h"
#include "runtime.h"
#include "shell_job.h"
#include "tool_environment.h"

#include <utility>

struct SimpleShell::State {
    std::shared_ptr<const ShellJob::OnOutput> onOutput;
    std::string label;
    std::shared_ptr<ShellJob> job;
};

SimpleShell::SimpleShell(std::function<void(std::string&&)> onOutput, const std::string& label)
    : state_(std::make_unique<State>())
{
    state_->onOutput = std::make_shared<const ShellJob::OnOutput>(std::move(onOutput));
    state_->label = label;
}

SimpleShell::~SimpleShell()
{
    Stop();
}

void SimpleShell::Run(const std::string& commandLine, unique_function<void()>&& done)
{
    Stop();
    Runtime& runtime = Runtime::Current();
    auto words = SplitCommandLine(commandLine);
    if (!words) {
        words = std::unexpected("Invalid command line: " + words.error());
    }
    const auto job = std::make_shared<ShellJob>(ShellJob::Program{.words = std::move(words),
                                                                  .environment = ToolEnvironment(),
                                                                  .folder = {},
                                                                  .takesInput = true,
                                                                  .reportsProgress = true},
                                                state_->onOutput, runtime.queue());
    job->SetCompletion(std::move(done));
    if (runtime.Start(job)) {
        state_->job = job;
    }
}

void SimpleShell::Stop()
{
    if (const auto job = std::exchange(state_->job, nullptr)) {
        job->Stop();
    }
}

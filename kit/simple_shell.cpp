#include "SimpleShell.h"

#include "runtime.h"
#include "shell_job.h"

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
    const auto job = std::make_shared<ShellJob>(commandLine, state_->onOutput, std::move(done),
                                                runtime.queue(), runtime.stoppedJobs());
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

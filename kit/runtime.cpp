#include "runtime.h"

#include "shell_job.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace {

Runtime* current = nullptr;

}  // namespace

Runtime::Runtime() : stoppedJobs_(std::make_unique<StoppedJobs>())
{
    assert(current == nullptr);
    current = this;
}

Runtime::~Runtime()
{
    ShutDown();
    current = nullptr;
}

Runtime& Runtime::Current()
{
    assert(current != nullptr);
    return *current;
}

bool Runtime::Start(const std::shared_ptr<ShellJob>& job)
{
    if (shutDown_) {
        return false;
    }
    jobs_.push_back(job);
    job->Start([this, raw = job.get()] { queue_.Post([this, raw] { JobEnded(raw); }); });
    return true;
}

void Runtime::JobEnded(const ShellJob* job)
{
    const auto found =
        std::ranges::find(jobs_, job, [](const auto& candidate) { return candidate.get(); });
    const std::shared_ptr<ShellJob> ended = std::move(*found);
    jobs_.erase(found);
    ended->Join();
    ended->Complete();
    if (IsIdle() && onIdle_) {
        onIdle_();
    }
}

void Runtime::ShutDown()
{
    if (std::exchange(shutDown_, true)) {
        return;
    }
    for (const auto& job : jobs_) {
        job->Stop();
    }
    queue_.Close();
    for (const auto& job : jobs_) {
        job->Join();
    }
    jobs_.clear();
    queue_.Purge();
}

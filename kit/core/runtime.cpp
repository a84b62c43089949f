#include "runtime.h"

#include "Looper.h"
#include "shell_job.h"
#include "toolkit.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <exception>
#include <utility>

namespace {

Runtime* current = nullptr;

// The thread of a job that cannot end keeps using the job and the queue.
void LeaveBehind(const std::shared_ptr<ShellJob>& job, const std::shared_ptr<UiQueue>& queue)
{
    static auto* const abandoned =
        new std::vector<std::pair<std::shared_ptr<ShellJob>, std::shared_ptr<UiQueue>>>;
    job->Detach();
    abandoned->emplace_back(job, queue);
}

template <class Owned>
auto Find(std::vector<std::shared_ptr<Owned>>& owners, const Owned* object)
{
    return std::ranges::find(owners, object, &std::shared_ptr<Owned>::get);
}

}  // namespace

Runtime::Runtime()
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

void Runtime::Protect(const std::function<void()>& call)
{
    if (current == nullptr || !current->handlers.error) {
        return call();
    }
    const auto& handlers = current->handlers;
    try {
        call();
    } catch (const std::exception& error) {
        handlers.error(error.what());
    } catch (...) {
        handlers.error("an exception of an unknown type was thrown");
    }
}

bool Runtime::IsIdle() const
{
    return std::ranges::all_of(jobs_, &ShellJob::IsStuck);
}

bool Runtime::Start(const std::shared_ptr<ShellJob>& job)
{
    if (shutDown_) {
        return false;
    }
    for (const auto& other : jobs_) {
        if (other->yields() && other->group() == job->group()) {
            other->Stop();
        }
    }
    jobs_.push_back(job);
    StartWaitingJobs();
    return true;
}

bool Runtime::MayStart(const ShellJob& job) const
{
    return std::ranges::none_of(jobs_, [&job](const auto& other) {
        return other->IsStarted() && other->IsStopped() && !other->IsStuck() &&
               other->group() == job.group();
    });
}

void Runtime::StartWaitingJobs()
{
    std::erase_if(jobs_, [](const auto& job) { return !job->IsStarted() && job->IsStopped(); });
    // A copy: the handler that reports the start may start or stop jobs.
    for (const auto& job : std::vector(jobs_)) {
        if (!job->IsStarted() && !job->IsStopped() && MayStart(*job)) {
            StartJob(*job);
        }
    }
}

void Runtime::StartJob(ShellJob& job)
{
    job.Start(
        {.progress =
             [this, raw = &job, queue = queue_](Progress progress) {
                 queue->Post([this, raw, progress] { ReportProgress(*raw, progress); });
             },
         .threadExits = [this, raw = &job,
                         queue = queue_] { queue->Post([this, raw] { OnJobFinished(raw); }); },
         .stuck = [this, raw = &job] { OnJobStuck(*raw); }});
    if (job.group() == JobGroup::Board && handlers.commandStarted) {
        handlers.commandStarted(job.words());
    }
}

void Runtime::ReportProgress(const ShellJob& job, Progress progress)
{
    if (!job.IsStopped() && job.group() == JobGroup::Board && handlers.commandProgress) {
        handlers.commandProgress(progress);
    }
}

void Runtime::ReportEnd(const ShellJob& job)
{
    if (job.group() == JobGroup::Board && handlers.commandEnded) {
        // The thread of a job that is stuck has not set its status yet.
        const int status = job.IsStuck() ? 0 : job.status();
        handlers.commandEnded(job.words(), {job.IsStopped(), status});
    }
}

void Runtime::OnJobStuck(ShellJob& job)
{
    if (handlers.warning && !job.words().empty()) {
        handlers.warning("The program " + job.words().front() +
                         " was killed and has not ended: it is waiting for a device or a disk.");
    }
    ReportEnd(job);
    StartWaitingJobs();
    NotifyIfIdle();
}

bool Runtime::SendInput(JobGroup group, std::string_view bytes)
{
    const auto job = std::ranges::find_if(jobs_, [group](const auto& candidate) {
        return candidate->group() == group && candidate->IsStarted() && !candidate->IsStopped();
    });
    return job != jobs_.end() && (*job)->Send(bytes);
}

void Runtime::StopJobs(JobGroup group)
{
    for (const auto& job : std::vector(jobs_)) {
        if (job->group() == group) {
            job->Stop();
        }
    }
}

void Runtime::OnJobFinished(const ShellJob* job)
{
    const auto found = Find(jobs_, job);
    const std::shared_ptr<ShellJob> finished = std::move(*found);
    jobs_.erase(found);
    finished->Join();
    if (!finished->IsStuck()) {
        ReportEnd(*finished);
    }
    StartWaitingJobs();
    finished->Complete();
    NotifyIfIdle();
}

void Runtime::NotifyIfIdle()
{
    if (IsIdle() && handlers.idle) {
        handlers.idle();
    }
}

void Runtime::Keep(std::shared_ptr<BLooper> window)
{
    if (!shutDown_ && Find(windows_, window.get()) == windows_.end()) {
        windows_.push_back(std::move(window));
    }
}

void Runtime::Release(const BLooper* window)
{
    const auto found = Find(windows_, window);
    if (found == windows_.end()) {
        return;
    }
    const auto released = std::move(*found);
    windows_.erase(found);
    if (handlers.windowClosed) {
        handlers.windowClosed();
    }
}

void Runtime::CloseWindows()
{
    for (const auto& window : std::vector(windows_)) {
        Protect([&] {
            if (window->QuitRequested()) {
                window->Quit();
            }
        });
    }
}

void Runtime::ShutDown()
{
    if (std::exchange(shutDown_, true)) {
        return;
    }
    for (const auto& job : std::vector(jobs_)) {
        job->Stop();
    }
    queue_->Close();
    const auto end = std::chrono::steady_clock::now() + kStuckTime;
    for (const auto& job : jobs_) {
        if (job->WaitForExit(end)) {
            job->Join();
        } else {
            LeaveBehind(job, queue_);
        }
    }
    jobs_.clear();
    windows_.clear();
    queue_->Purge();
    DestroyReleasedWidgets();
}

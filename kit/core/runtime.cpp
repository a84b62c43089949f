#include "runtime.h"

#include "Looper.h"
#include "shell_job.h"
#include "toolkit.h"

#include <algorithm>
#include <cassert>
#include <exception>
#include <utility>

namespace {

Runtime* current = nullptr;

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

bool Runtime::Start(const std::shared_ptr<ShellJob>& job)
{
    if (shutDown_) {
        return false;
    }
    jobs_.push_back(job);
    StartWaitingJobs();
    return true;
}

bool Runtime::MayStart(const ShellJob& job) const
{
    return std::ranges::none_of(jobs_, [&job](const auto& other) {
        return other->IsStarted() && other->IsStopped() && other->group() == job.group();
    });
}

void Runtime::StartWaitingJobs()
{
    for (const auto& job : jobs_) {
        if (!job->IsStarted() && !job->IsStopped() && MayStart(*job)) {
            job->Start(
                [this, raw = job.get()] { queue_.Post([this, raw] { OnJobFinished(raw); }); });
        }
    }
}

void Runtime::OnJobFinished(const ShellJob* job)
{
    const auto found = Find(jobs_, job);
    const std::shared_ptr<ShellJob> finished = std::move(*found);
    jobs_.erase(found);
    finished->Join();
    std::erase_if(jobs_,
                  [](const auto& other) { return !other->IsStarted() && other->IsStopped(); });
    StartWaitingJobs();
    finished->Complete();
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
    queue_.Close();
    for (const auto& job : jobs_) {
        job->Join();
    }
    jobs_.clear();
    windows_.clear();
    queue_.Purge();
    DestroyReleasedWidgets();
}

#include "runtime.h"

#include "Looper.h"
#include "protect.h"
#include "shell_job.h"

#include <QCoreApplication>
#include <QEvent>

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

void Runtime::Keep(std::shared_ptr<BLooper> window)
{
    if (!shutDown_ && std::ranges::find(windows_, window) == windows_.end()) {
        windows_.push_back(std::move(window));
    }
}

void Runtime::Release(const BLooper* window)
{
    const auto found =
        std::ranges::find(windows_, window, [](const auto& candidate) { return candidate.get(); });
    if (found == windows_.end()) {
        return;
    }
    const auto released = std::move(*found);
    windows_.erase(found);
    if (onWindowClosed_) {
        onWindowClosed_();
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
    for (const auto& job : jobs_) {
        job->Stop();
    }
    queue_.Close();
    for (const auto& job : jobs_) {
        job->Join();
    }
    jobs_.clear();
    windows_.clear();
    queue_.Purge();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // The windows' widgets.
}

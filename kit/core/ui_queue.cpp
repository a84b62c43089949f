#include "ui_queue.h"

#include "descriptors.h"
#include "runtime.h"
#include "toolkit.h"

#include <chrono>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace {

// A task usually carries a short line of output, and at most 64 KiB: 512 tasks are enough work for
// one Drain and take at most 32 MiB.
constexpr std::size_t kMaxTasks = 512;
constexpr std::chrono::milliseconds kDrainTime{8};

}  // namespace

UiQueue::UiQueue()
{
    if (!MakePipe(wake_)) {
        throw std::runtime_error("cannot create a pipe for the user-interface thread");
    }
    source_ = WatchQueue(*this);
}

UiQueue::~UiQueue()
{
    source_.reset();
    for (const int fd : wake_) {
        CloseDescriptor(fd);
    }
}

void UiQueue::RaiseWake()
{
    std::ignore = WriteFully(wake_[1], "w");
}

void UiQueue::LowerWake()
{
    std::ignore = ReadAvailable(wake_[0]);
}

void UiQueue::WaitForRoom(const std::atomic<bool>& cancelled)
{
    std::unique_lock lock(mutex_);
    room_.wait(lock, [&] { return tasks_.size() < kMaxTasks || closed_ || cancelled; });
}

void UiQueue::WakeWaiting()
{
    const std::lock_guard lock(mutex_);
    room_.notify_all();
}

void UiQueue::Post(Task task)
{
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    if (tasks_.size() == 1 && !closed_) {
        RaiseWake();
    }
}

void UiQueue::Close()
{
    const std::lock_guard lock(mutex_);
    closed_ = true;
    LowerWake();
    room_.notify_all();
}

void UiQueue::Purge()
{
    // Destroying a task may post another.
    for (;;) {
        std::deque<Task> rest;
        {
            const std::lock_guard lock(mutex_);
            rest.swap(tasks_);
        }
        if (rest.empty()) {
            return;
        }
    }
}

void UiQueue::Drain()
{
    const auto end = std::chrono::steady_clock::now() + kDrainTime;
    while (RunNext() && std::chrono::steady_clock::now() < end) {
    }
}

// Takes one task at a time: a task may run a nested event loop, which must be able to run the rest.
bool UiQueue::RunNext()
{
    Task task;
    {
        const std::lock_guard lock(mutex_);
        if (tasks_.empty() || closed_) {
            return false;
        }
        task = std::move(tasks_.front());
        tasks_.pop_front();
        if (tasks_.empty()) {
            LowerWake();
        }
        // Notifying for each task would cause a context switch for each task.
        if (tasks_.size() == kMaxTasks / 2) {
            room_.notify_all();
        }
    }
    Runtime::Protect([&task] { task(); });
    return true;
}

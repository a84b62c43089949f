#include "ui_queue.h"

#include "descriptors.h"
#include "runtime.h"
#include "toolkit.h"

#include <chrono>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace {

// A piece of output holds at most 64 KiB, and usually one short line: 512 of them keep the other
// side busy for a turn, and take 32 MiB at most.
constexpr std::size_t kMaxTasks = 512;
constexpr std::chrono::milliseconds kTurn{8};

}  // namespace

UiQueue::UiQueue()
{
    if (!MakePipe(wake_)) {
        throw std::runtime_error("cannot make a pipe for the user-interface thread");
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

void UiQueue::WaitForRoom(const std::atomic<bool>& giveUp)
{
    std::unique_lock lock(mutex_);
    room_.wait(lock, [&] { return tasks_.size() < kMaxTasks || closed_ || giveUp; });
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
    const auto end = std::chrono::steady_clock::now() + kTurn;
    while (RunNext() && std::chrono::steady_clock::now() < end) {
    }
}

// One at a time: a task may run an event loop of its own, which must be able to reach the next one.
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
        // Not at every task, or the threads would take turns for each one.
        if (tasks_.size() == kMaxTasks / 2) {
            room_.notify_all();
        }
    }
    Runtime::Protect([&task] { task(); });
    return true;
}

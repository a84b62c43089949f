#include "ui_queue.h"

#include "descriptors.h"
#include "protect.h"

#include <QSocketNotifier>

#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace {

// Pieces of output hold at most 64 KiB, lines as a rule far less: 512 of them are enough to keep
// the other side busy for a turn, and at most 32 MiB.
constexpr std::size_t kMostTasks = 512;
constexpr std::chrono::milliseconds kTurn{8};

}  // namespace

// A pipe that is readable exactly while the queue holds something. A level and not an event: the
// event loop of a menu that a task has opened sees it as well.
class UiQueue::Waker {
  public:
    explicit Waker(UiQueue& queue)
    {
        if (!MakePipe(ends_)) {
            throw std::runtime_error("cannot make a pipe for the user-interface thread");
        }
        notifier_ = std::make_unique<QSocketNotifier>(ends_[0], QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [&queue] { queue.Drain(); });
    }
    Waker(const Waker&) = delete;
    Waker& operator=(const Waker&) = delete;
    ~Waker()
    {
        notifier_.reset();
        CloseDescriptor(ends_[0]);
        CloseDescriptor(ends_[1]);
    }

    void Raise() { std::ignore = WriteFully(ends_[1], "w"); }
    void Lower() { std::ignore = ReadAvailable(ends_[0]); }

  private:
    std::array<int, 2> ends_{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

UiQueue::UiQueue() : waker_(std::make_unique<Waker>(*this)) {}

UiQueue::~UiQueue() = default;

void UiQueue::WaitForRoom(const std::atomic<bool>& giveUp)
{
    std::unique_lock lock(mutex_);
    room_.wait(lock, [&] { return tasks_.size() < kMostTasks || closed_ || giveUp; });
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
        waker_->Raise();
    }
}

void UiQueue::Close()
{
    const std::lock_guard lock(mutex_);
    closed_ = true;
    waker_->Lower();
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

// One at a time: a task may run an event loop of its own, and the next must not be out of reach.
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
            waker_->Lower();
        }
        // Not at every task: the threads would take turns for each.
        if (tasks_.size() == kMostTasks / 2) {
            room_.notify_all();
        }
    }
    Protect([&task] { task(); });
    return true;
}

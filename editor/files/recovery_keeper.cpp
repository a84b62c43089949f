#include "recovery_keeper.h"

#include "runtime.h"

#include <utility>

RecoveryKeeper::RecoveryKeeper(std::string root, ErrorHandler onError)
    : store_(std::move(root)), onError_(std::move(onError))
{
}

RecoveryKeeper::~RecoveryKeeper()
{
    Finish();
}

void RecoveryKeeper::Enqueue(Task task)
{
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { RunTasks(); });
    }
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    changed_.notify_one();
}

void RecoveryKeeper::RunTasks()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
        if (tasks_.empty()) {
            return;
        }
        const Task task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

void RecoveryKeeper::Finish()
{
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        changed_.notify_one();
    }
    thread_.join();
    stopping_ = false;
}

void RecoveryKeeper::Keep(std::string id, RecoveryCopy copy)
{
    Enqueue([this, id = std::move(id), copy = std::move(copy)] {
        if (const auto saved = store_.Keep(id, copy); !saved) {
            Runtime::Current().queue().Post(
                [this, id, error = saved.error()] { onError_(id, error); });
        }
    });
}

void RecoveryKeeper::Discard(std::string id)
{
    Enqueue([this, id = std::move(id)] { store_.Discard(id); });
}

std::vector<OrphanedCopy> RecoveryKeeper::Orphans()
{
    Finish();
    return store_.Orphans();
}

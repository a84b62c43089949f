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

void RecoveryKeeper::Do(Work work)
{
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { DoAll(); });
    }
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
    changed_.notify_one();
}

void RecoveryKeeper::DoAll()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return ends_ || !work_.empty(); });
        if (work_.empty()) {
            return;
        }
        const Work work = std::move(work_.front());
        work_.pop_front();
        lock.unlock();
        work();
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
        ends_ = true;
        changed_.notify_one();
    }
    thread_.join();
    ends_ = false;
}

void RecoveryKeeper::Keep(std::string id, RecoveryCopy copy)
{
    Do([this, id = std::move(id), copy = std::move(copy)] {
        if (const auto kept = store_.Keep(id, copy); !kept) {
            Runtime::Current().queue().Post(
                [this, id, error = kept.error()] { onError_(id, error); });
        }
    });
}

void RecoveryKeeper::Discard(std::string id)
{
    Do([this, id = std::move(id)] { store_.Discard(id); });
}

std::vector<OrphanedCopy> RecoveryKeeper::Orphans()
{
    Finish();
    return store_.Orphans();
}

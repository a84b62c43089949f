#include "recovery_keeper.h"

#include <utility>

RecoveryKeeper::RecoveryKeeper(std::string root, std::function<void(const std::string&)> onError)
    : store_(std::move(root)), onError_(std::move(onError))
{
    thread_.setMaxThreadCount(1);  // Which keeps the order.
}

RecoveryKeeper::~RecoveryKeeper()
{
    thread_.waitForDone();
}

void RecoveryKeeper::Do(std::function<void()> work)
{
    thread_.start(std::move(work));
}

void RecoveryKeeper::Keep(std::string id, RecoveryCopy copy)
{
    Do([this, id = std::move(id), copy = std::move(copy)] {
        const auto kept = store_.Keep(id, copy);
        if (!kept) {
            QMetaObject::invokeMethod(&context_, [this, error = kept.error()] { onError_(error); });
        }
    });
}

void RecoveryKeeper::Discard(std::string id)
{
    Do([this, id = std::move(id)] { store_.Discard(id); });
}

std::vector<OrphanedCopy> RecoveryKeeper::Orphans()
{
    thread_.waitForDone();
    return store_.Orphans();
}

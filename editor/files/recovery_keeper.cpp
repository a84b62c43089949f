#include "recovery_keeper.h"

#include <utility>

namespace {

constexpr std::chrono::seconds kOrphansPatience{5};

}  // namespace

RecoveryKeeper::RecoveryKeeper(std::string root, ErrorHandler onError)
    : store_(std::make_shared<RecoveryStore>(std::move(root))),
      onError_(std::move(onError)),
      worker_(1, kEndPatience)
{
    worker_.SetProblemHandler([this](const std::string& problem) { onError_({}, problem); });
}

void RecoveryKeeper::Keep(const std::string& id, RecoveryCopy copy)
{
    worker_.Do(id, [this, store = store_, id, copy = std::move(copy)]() -> FileWorker::Result {
        const auto kept = store->Keep(id, copy);
        if (kept) {
            return {};
        }
        return [this, id, error = kept.error()] { onError_(id, error); };
    });
}

void RecoveryKeeper::Discard(const std::string& id)
{
    worker_.Do(id, [store = store_, id]() -> FileWorker::Result {
        store->Discard(id);
        return {};
    });
}

bool RecoveryKeeper::WaitFor(const std::string& id, FileWorker::Patience patience)
{
    return worker_.WaitFor(id, patience);
}

std::vector<OrphanedCopy> RecoveryKeeper::Orphans()
{
    const std::string key = "orphans";
    const auto found = std::make_shared<std::vector<OrphanedCopy>>();
    worker_.Do(key, [store = store_, found]() -> FileWorker::Result {
        *found = store->Orphans();
        return {};
    });
    return worker_.WaitFor(key, kOrphansPatience) ? std::move(*found) : std::vector<OrphanedCopy>();
}

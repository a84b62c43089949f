#include "file_worker.h"

#include "runtime.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Lock = std::unique_lock<std::mutex>;

std::atomic<bool> abandonedThreads = false;

}  // namespace

// Shared with the threads, which may outlive the FileWorker.
struct FileWorker::State : std::enable_shared_from_this<State> {
    struct Item {
        std::string key;
        Work work;
    };
    struct Finished {
        std::string key;
        Result result;
    };

    explicit State(UiQueue& uiQueue) : queue(uiQueue) {}

    bool IsRunnable(const Item& item) const { return !running.contains(item.key); }
    bool IsBusy(const std::string& key) const;
    std::optional<Item> TakeNext();
    void Perform(Lock& lock, Item item);
    void RunThread();
    void Post(const std::string& key, Result result);
    std::optional<Finished> TakeFinished(const std::string* key);

    UiQueue& queue;  // Used only until `closed`.
    std::mutex mutex;
    std::condition_variable arrived;
    std::condition_variable done;
    std::deque<Item> waiting;          // At most one of each key.
    std::set<std::string> running;     // Keys.
    std::deque<Finished> finished;     // Results that have not run.
    std::vector<std::thread> threads;  // Each ends after `closed`, unless its work is stuck.
    int idleThreads = 0;
    bool closed = false;
};

bool FileWorker::State::IsBusy(const std::string& key) const
{
    return running.contains(key) ||
           std::ranges::any_of(waiting, [&](const Item& item) { return item.key == key; });
}

std::optional<FileWorker::State::Item> FileWorker::State::TakeNext()
{
    const auto next =
        std::ranges::find_if(waiting, [this](const Item& item) { return IsRunnable(item); });
    if (next == waiting.end()) {
        return std::nullopt;
    }
    Item item = std::move(*next);
    waiting.erase(next);
    return item;
}

void FileWorker::State::Perform(Lock& lock, Item item)
{
    running.insert(item.key);
    lock.unlock();
    Result result = item.work();
    item.work = {};
    lock.lock();
    running.erase(item.key);
    if (result && !closed) {
        Post(item.key, std::move(result));
    }
    done.notify_all();
    arrived.notify_all();  // Work of the same key may begin now.
}

void FileWorker::State::RunThread()
{
    Lock lock(mutex);
    for (;;) {
        if (auto item = TakeNext()) {
            Perform(lock, std::move(*item));
        } else if (closed) {
            break;
        } else {
            ++idleThreads;
            arrived.wait(lock);
            --idleThreads;
        }
    }
}

// Each result is posted once, but WaitFor may run it earlier.
void FileWorker::State::Post(const std::string& key, Result result)
{
    finished.push_back({key, std::move(result)});
    queue.Post([state = weak_from_this()] {
        const auto self = state.lock();
        if (auto next = self ? self->TakeFinished(nullptr) : std::nullopt) {
            next->result();
        }
    });
}

// The first result; that of a key, if one is passed.
std::optional<FileWorker::State::Finished> FileWorker::State::TakeFinished(const std::string* key)
{
    const Lock lock(mutex);
    const auto next = std::ranges::find_if(
        finished, [&](const Finished& item) { return key == nullptr || item.key == *key; });
    if (next == finished.end() || closed) {
        return std::nullopt;
    }
    Finished item = std::move(*next);
    finished.erase(next);
    return item;
}

FileWorker::FileWorker(int maxThreads, Patience patience)
    : state_(std::make_shared<State>(Runtime::Current().queue())),
      maxThreads_(maxThreads),
      patience_(patience)
{
}

FileWorker::~FileWorker()
{
    auto& state = *state_;
    Lock lock(state.mutex);
    state.finished.clear();
    state.closed = true;
    state.arrived.notify_all();
    const bool areDone = state.done.wait_for(
        lock, patience_, [&] { return state.running.empty() && state.waiting.empty(); });
    state.waiting.clear();
    auto threads = std::move(state.threads);
    lock.unlock();
    for (auto& thread : threads) {
        areDone ? thread.join() : thread.detach();
    }
    if (!areDone) {
        abandonedThreads = true;
    }
}

bool FileWorker::HasAbandonedThreads()
{
    return abandonedThreads;
}

void FileWorker::SetProblemHandler(std::function<void(const std::string& problem)> handler)
{
    problemHandler_ = std::move(handler);
}

void FileWorker::Do(const std::string& key, Work work)
{
    {
        auto& waiting = state_->waiting;
        const Lock lock(state_->mutex);
        const auto older = std::ranges::find(waiting, key, &State::Item::key);
        if (older != waiting.end()) {
            std::swap(older->work, work);  // The older work is destroyed without the lock.
        } else {
            waiting.push_back({key, std::move(work)});
        }
    }
    StartThreads();
}

void FileWorker::StartThreads()
{
    auto& state = *state_;
    Lock lock(state.mutex);
    const auto runnable = std::ranges::count_if(
        state.waiting, [&](const State::Item& item) { return state.IsRunnable(item); });
    state.arrived.notify_all();
    if (runnable <= state.idleThreads || std::ssize(state.threads) == maxThreads_) {
        return;
    }
    try {
        state.threads.emplace_back([self = state_] { self->RunThread(); });
    } catch (const std::system_error& error) {
        while (auto item = state.TakeNext()) {
            state.Perform(lock, std::move(*item));
        }
        ReportProblem(error.what());
    }
}

void FileWorker::ReportProblem(const std::string& problem)
{
    if (auto handler = std::exchange(problemHandler_, {})) {
        state_->Post({}, [handler = std::move(handler), problem] {
            handler("The window waits while files are written, because no thread can be started: " +
                    problem);
        });
    }
}

bool FileWorker::WaitFor(const std::string& key, Patience patience)
{
    auto& state = *state_;
    {
        Lock lock(state.mutex);
        if (!state.done.wait_for(lock, patience, [&] { return !state.IsBusy(key); })) {
            return false;
        }
    }
    while (auto item = state.TakeFinished(&key)) {
        item->result();
    }
    return true;
}

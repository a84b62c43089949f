#pragma once

#include "unique_function.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

class EventSource;

// The only way to the user-interface thread: what is posted runs there, first in, first out.
//
// Made and destroyed on the user-interface thread, by the Runtime. Each turn of the event loop runs
// tasks for at most about 8 ms, so that a flood of output cannot freeze the windows. A thread that
// posts whatever it reads waits for room before each task, so that the queue does not grow without
// bounds.
class UiQueue {
  public:
    using Task = unique_function<void()>;

    // Throws std::runtime_error when no pipe is available.
    UiQueue();
    ~UiQueue();
    UiQueue(const UiQueue&) = delete;
    UiQueue& operator=(const UiQueue&) = delete;

    // Callable on any thread.
    bool IsUiThread() const { return std::this_thread::get_id() == thread_; }

    // Callable on any thread. Never waits.
    void Post(Task task);

    // Not on the user-interface thread. Waits while the queue is full, but not after Close, and not
    // when `giveUp` is true; whoever sets that calls WakeWaiting.
    void WaitForRoom(const std::atomic<bool>& giveUp);
    void WakeWaiting();

    // From now on nothing runs and nobody waits; what is posted is kept for Purge.
    void Close();

    // Destroys, on the user-interface thread, what has not run. Only after Close, and when no other
    // thread posts any more.
    void Purge();

    // For the toolkit: readable exactly while the queue holds a task. It is a level and not an
    // event, so that the event loop of a menu that a task has opened sees it as well.
    int wakeFd() const { return wake_[0]; }
    // Runs tasks for one turn of the event loop.
    void Drain();

  private:
    bool RunNext();
    void RaiseWake();
    void LowerWake();

    const std::thread::id thread_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable room_;
    std::deque<Task> tasks_;
    bool closed_ = false;
    std::array<int, 2> wake_{-1, -1};
    std::unique_ptr<EventSource> source_;
};

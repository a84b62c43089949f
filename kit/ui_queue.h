#pragma once

#include "unique_function.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

// The one way to the user-interface thread: what is posted runs there, first in, first out.
//
// Made and destroyed on the user-interface thread, by the Runtime. The queue is emptied for at most
// about 8 ms in each turn of the event loop, so that a flood of output cannot freeze the windows. A
// thread that posts as much as comes in waits for room before each task, so that the queue does not
// grow without bounds.
class UiQueue {
  public:
    using Task = unique_function<void()>;

    UiQueue();
    ~UiQueue();
    UiQueue(const UiQueue&) = delete;
    UiQueue& operator=(const UiQueue&) = delete;

    // Whether this is called on the user-interface thread. From any thread.
    bool IsUiThread() const { return std::this_thread::get_id() == uiThread_; }

    // From any thread. Never waits.
    void Post(Task task);

    // Not on the user-interface thread. Waits while the queue is full, not after Close, and not
    // when `giveUp` is true; who makes it true calls WakeWaiting.
    void WaitForRoom(const std::atomic<bool>& giveUp);
    void WakeWaiting();

    // From here on nothing runs and nobody waits; what is posted is kept for Purge.
    void Close();

    // Destroys, on the user-interface thread, what has not run. Only after Close, and when no
    // other thread posts any more.
    void Purge();

  private:
    class Waker;

    void Drain();
    bool RunNext();

    const std::thread::id uiThread_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable room_;
    std::deque<Task> tasks_;
    bool closed_ = false;
    std::unique_ptr<Waker> waker_;
};

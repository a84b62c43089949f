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

// The only way to run code on the user-interface thread from other threads: posted tasks run there,
// first in, first out.
//
// Owned by the Runtime. Each iteration of the event loop runs tasks for at most about 8 ms, so that
// a flood of output cannot freeze the windows. A thread that produces tasks without limit must call
// WaitForRoom before each task, so that the queue does not grow without bounds. [ui]
class UiQueue {
  public:
    using Task = unique_function<void()>;

    // Throws std::runtime_error if no pipe can be created.
    UiQueue();
    ~UiQueue();
    UiQueue(const UiQueue&) = delete;
    UiQueue& operator=(const UiQueue&) = delete;

    // [any]
    bool IsUiThread() const { return std::this_thread::get_id() == thread_; }

    // Never blocks. [any]
    void Post(Task task);

    // Blocks while the queue is full, until Close is called or `cancelled` is true. After setting
    // `cancelled`, call WakeWaiting. Must not be called on the user-interface thread.
    void WaitForRoom(const std::atomic<bool>& cancelled);
    void WakeWaiting();

    // Stops running tasks and unblocks all waiting threads. Tasks posted later are kept for Purge.
    void Close();
    bool IsClosed() const { return closed_; }  // [any]

    // Destroys the tasks that have not run. Must be called after Close, when no other thread posts
    // tasks any more.
    void Purge();

    // For the toolkit only: a descriptor that is readable exactly while the queue contains a task.
    // It is level-triggered, so the nested event loop of a menu opened by a task sees it, too.
    int wakeFd() const { return wake_[0]; }
    // For the toolkit only: runs tasks for one iteration of the event loop.
    void Drain();

  private:
    bool RunNext();
    void RaiseWake();
    void LowerWake();

    const std::thread::id thread_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable room_;
    std::deque<Task> tasks_;
    std::atomic<bool> closed_ = false;
    std::array<int, 2> wake_{-1, -1};
    std::unique_ptr<EventSource> source_;
};

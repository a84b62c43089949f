#pragma once

#include "unique_function.h"

#include <chrono>
#include <memory>

class UiQueue;

// What core/ needs from a toolkit. The toolkit-specific part of the framework implements it. [ui]

// A source of events for the event loop; active until it is destroyed.
class EventSource {
  public:
    EventSource() = default;
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;
    virtual ~EventSource() = default;
};

// Calls `queue.Drain()` whenever `queue.wakeFd()` is readable, in nested event loops as well. The
// queue must outlive the result.
std::unique_ptr<EventSource> WatchQueue(UiQueue& queue);

// Calls the function once, after this time, unless the result is destroyed before.
std::unique_ptr<EventSource> CallAfter(std::chrono::milliseconds time,
                                       unique_function<void()> function);

// Destroys the widgets of closed windows.
void DestroyReleasedWidgets();

#pragma once

#include <memory>

class UiQueue;

// What this part of the framework needs of a toolkit. The toolkit's part defines these functions.

// Watches something for the event loop until it is destroyed.
class EventSource {
  public:
    EventSource() = default;
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;
    virtual ~EventSource() = default;
};

// Calls `queue.Drain()` on this thread whenever `queue.wakeFd()` is readable, also from nested
// event loops. The queue outlives the result.
std::unique_ptr<EventSource> WatchQueue(UiQueue& queue);

// Destroys the widgets of windows that have closed.
void DestroyReleasedWidgets();

// Implements toolkit.h with Qt's event loop.

#include "toolkit.h"
#include "ui_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <QTimer>

#include <utility>

namespace {

class QueueNotifier final : public EventSource {
  public:
    explicit QueueNotifier(UiQueue& queue) : notifier_(queue.wakeFd(), QSocketNotifier::Read)
    {
        QObject::connect(&notifier_, &QSocketNotifier::activated, [&queue] { queue.Drain(); });
    }

  private:
    QSocketNotifier notifier_;
};

class Timer final : public EventSource {
  public:
    Timer(std::chrono::milliseconds time, unique_function<void()> function)
        : function_(std::move(function))
    {
        timer_.setSingleShot(true);
        // The function may destroy this object.
        QObject::connect(&timer_, &QTimer::timeout, [this] { std::exchange(function_, {})(); });
        timer_.start(time);
    }

  private:
    QTimer timer_;
    unique_function<void()> function_;
};

}  // namespace

std::unique_ptr<EventSource> WatchQueue(UiQueue& queue)
{
    return std::make_unique<QueueNotifier>(queue);
}

std::unique_ptr<EventSource> CallAfter(std::chrono::milliseconds time,
                                       unique_function<void()> function)
{
    return std::make_unique<Timer>(time, std::move(function));
}

void DestroyReleasedWidgets()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

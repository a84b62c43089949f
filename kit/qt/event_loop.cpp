// Implements toolkit.h with Qt's event loop.

#include "toolkit.h"
#include "ui_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>

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

}  // namespace

std::unique_ptr<EventSource> WatchQueue(UiQueue& queue)
{
    return std::make_unique<QueueNotifier>(queue);
}

void DestroyReleasedWidgets()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

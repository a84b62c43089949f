#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

// Converts the signals that request termination into an event: SIGINT, SIGTERM and SIGHUP, except
// for those that are ignored when the program starts. A second SIGINT or SIGTERM terminates the
// program at once. Only one object may exist at a time. [ui]
class Signals {
  public:
    Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

    // A descriptor that is readable from the first signal on.
    int fd() const;
    // The handler is called once, with the number of the first signal.
    void SetHandler(std::function<void(int number)> handler);

  private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

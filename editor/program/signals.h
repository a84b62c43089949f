#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

// The signals that ask the program to end, as an event. One at a time; used on the user-interface
// thread.
class Signals {
  public:
    Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

    // Readable from the first signal on.
    int fd() const;
    // Called once, with the first signal's number.
    void SetHandler(std::function<void(int number)> handler);

  private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

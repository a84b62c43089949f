#pragma once

#include <sys/types.h>

#include <functional>

// A copy of the test's process that does this work and ends with the status it returns. Killed with
// this object.
class ForkedChild {
  public:
    explicit ForkedChild(const std::function<int()>& work);
    ForkedChild(const ForkedChild&) = delete;
    ForkedChild& operator=(const ForkedChild&) = delete;
    ~ForkedChild() { Kill(); }

    // Waits for its end. -1 when a signal ended it.
    int Wait();
    void Kill();

  private:
    pid_t pid_;
};

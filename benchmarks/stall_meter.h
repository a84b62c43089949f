#pragma once

#include <QObject>
#include <QTimer>

#include <algorithm>
#include <chrono>

// Measures the longest time between two iterations of the event loop, to a millisecond. [ui]
class StallMeter : public QObject {
  public:
    StallMeter()
    {
        connect(&timer_, &QTimer::timeout, this, [this] {
            const auto now = Clock::now();
            longest_ = std::max(longest_, now - last_);
            last_ = now;
        });
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(1);
    }

    // In milliseconds.
    double Longest() const { return std::chrono::duration<double, std::milli>(longest_).count(); }

  private:
    using Clock = std::chrono::steady_clock;

    QTimer timer_;
    Clock::time_point last_ = Clock::now();
    Clock::duration longest_{};
};

#include "signals.h"

#include "descriptors.h"
#include "process_setup.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <tuple>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array kNumbers{SIGINT, SIGTERM, SIGHUP};
// Programs such as timeout send one request twice, to the process and to its group.
constexpr std::chrono::milliseconds kRepetitionTime{100};

std::array<int, 2> signalPipe{-1, -1};
volatile std::sig_atomic_t firstSignal = 0;
std::atomic<Clock::rep> firstTime = 0;
static_assert(decltype(firstTime)::is_always_lock_free);

// Whether the user has lost patience. When a terminal closes, the system and the shell send SIGHUP.
bool IsSecondRequest(int number)
{
    const auto since = Clock::now().time_since_epoch() - Clock::duration(firstTime);
    return firstSignal != 0 && number != SIGHUP && since > kRepetitionTime;
}

void HandleSignal(int number)
{
    const int error = errno;
    if (IsSecondRequest(number)) {
        signal(number, SIG_DFL);
        raise(number);  // Takes effect when this function returns.
    }
    if (firstSignal == 0) {
        firstSignal = number;
        firstTime = Clock::now().time_since_epoch().count();
    }
    std::ignore = write(signalPipe[1], "s", 1);
    errno = error;
}

}  // namespace

Signals::Signals()
{
    firstSignal = 0;
    if (!MakePipe(signalPipe)) {
        return;
    }
    SetNonBlocking(signalPipe[1]);
    for (const int number : kNumbers) {
        HandleUnlessIgnored(number, HandleSignal);
    }
}

Signals::~Signals()
{
    for (const int number : kNumbers) {
        HandleUnlessIgnored(number, SIG_DFL);
    }
    notifier_.reset();
    CloseDescriptor(std::exchange(signalPipe[1], -1));
    CloseDescriptor(std::exchange(signalPipe[0], -1));
}

int Signals::fd() const
{
    return signalPipe[0];
}

void Signals::SetHandler(std::function<void(int)> handler)
{
    notifier_ = std::make_unique<QSocketNotifier>(fd(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                     [this, handler = std::move(handler)] {
                         // The byte is not read, because others poll the descriptor, too.
                         notifier_->setEnabled(false);
                         handler(firstSignal);
                     });
}

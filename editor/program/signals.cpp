#include "signals.h"

#include "descriptors.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <tuple>
#include <utility>

namespace {

constexpr std::array kNumbers{SIGINT, SIGTERM, SIGHUP};

std::array<int, 2> signalPipe{-1, -1};
volatile std::sig_atomic_t firstSignal = 0;

void HandleSignal(int number)
{
    const int error = errno;
    if (firstSignal == 0) {
        firstSignal = number;
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
    struct sigaction action {};
    action.sa_handler = HandleSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : kNumbers) {
        sigaction(number, &action, nullptr);
    }
}

Signals::~Signals()
{
    for (const int number : kNumbers) {
        signal(number, SIG_DFL);
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

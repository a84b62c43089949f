#include "user_shell.h"

#include "descriptors.h"

#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <signal.h>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kGrace{500};
constexpr std::chrono::milliseconds kLookInterval{20};
constexpr std::size_t kMostDrained = 1 << 20;  // bytes
constexpr int kCannotRun = 127;

std::string ShellProgram()
{
    const auto shell = qgetenv("SHELL");
    return shell.isEmpty() ? "/bin/sh" : shell.toStdString();
}

// May be called by the notifier's own signal. The descriptor may be closed then.
void Discard(std::unique_ptr<QSocketNotifier>& notifier)
{
    if (notifier) {
        notifier->setEnabled(false);
        notifier.release()->deleteLater();
    }
}

}  // namespace

UserShell::UserShell(QObject* parent) : QObject(parent)
{
    start_.setSingleShot(true);
    connect(&start_, &QTimer::timeout, this, &UserShell::StartNext);
    kill_.setSingleShot(true);
    kill_.setInterval(kGrace);
    connect(&kill_, &QTimer::timeout, this, [this] { child_->SignalGroup(SIGKILL); });
    lookForExit_.setInterval(kLookInterval);
    connect(&lookForExit_, &QTimer::timeout, this, &UserShell::LookForExit);
}

UserShell::~UserShell()
{
    if (child_) {
        child_->End(kGrace);
    }
}

void UserShell::Run(const QString& command, const QString& folder)
{
    Stop();
    next_ = Command{command, folder};
    if (!child_) {
        start_.start();
    }
}

void UserShell::Stop()
{
    next_.reset();
    if (child_ && !std::exchange(stopped_, true)) {
        child_->SignalGroup(SIGTERM);
        kill_.start();
    }
}

void UserShell::StartNext()
{
    if (!next_ || child_) {
        return;
    }
    const auto [line, folder] = *std::exchange(next_, std::nullopt);
    std::string error;
    if (!QFileInfo(folder).isDir()) {
        error = "There is no folder " + folder.toStdString() + ".";
    } else if (auto child = ChildProcess::Start(
                   {ShellProgram(), "-c", line.toLocal8Bit().toStdString()}, CurrentEnvironment(),
                   QFile::encodeName(folder).toStdString())) {
        child_.emplace(std::move(*child));
        Follow();
        return;
    } else {
        error = "The shell cannot be started: " + child.error() + ".";
    }
    Q_EMIT Output(error + "\n");
    Q_EMIT Finished(kCannotRun);
}

void UserShell::Follow()
{
    stopped_ = false;
    outputReady_ = std::make_unique<QSocketNotifier>(child_->outputFd(), QSocketNotifier::Read);
    connect(outputReady_.get(), &QSocketNotifier::activated, this, &UserShell::Read);
    if (child_->exitFd() < 0) {
        lookForExit_.start();
        return;
    }
    exited_ = std::make_unique<QSocketNotifier>(child_->exitFd(), QSocketNotifier::Read);
    connect(exited_.get(), &QSocketNotifier::activated, this, &UserShell::LookForExit);
}

void UserShell::Read()
{
    const std::string bytes = ReadAvailable(child_->outputFd());
    if (bytes.empty()) {
        outputReady_->setEnabled(false);  // Everyone has closed it.
        return;
    }
    Q_EMIT Output(bytes);
}

void UserShell::LookForExit()
{
    if (child_->HasExited()) {
        Finish();
    }
}

void UserShell::Finish()
{
    Discard(exited_);
    Discard(outputReady_);
    lookForExit_.stop();
    kill_.stop();
    // What it printed before it ended is still in the pipe; others may go on to fill it.
    std::string rest;
    for (bool isMore = !stopped_; isMore && rest.size() < kMostDrained;) {
        const auto bytes = ReadAvailable(child_->outputFd());
        isMore = !bytes.empty();
        rest += bytes;
    }
    if (stopped_) {
        child_->SignalGroup(SIGKILL);  // Before its number can be another's.
    }
    const int status = child_->Reap();
    child_.reset();
    if (!rest.empty()) {
        Q_EMIT Output(rest);
    }
    if (next_) {
        start_.start();
    }
    Q_EMIT Finished(status);
}

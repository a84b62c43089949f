#include "command_monitor.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto kTick = 1s;
constexpr auto kLong = 2s;
constexpr auto kResultTime = 4s;

}  // namespace

CommandMonitor::CommandMonitor(Runtime& runtime, QObject* parent)
    : QObject(parent), runtime_(runtime)
{
    runtime.handlers.commandStarted = [this](const auto& words) { Begin(words); };
    runtime.handlers.commandEnded = [this](const auto& words, Runtime::CommandEnd end) {
        End(words, end);
    };
    runtime.handlers.commandProgress = [this](Progress progress) { NoteProgress(progress); };
    connect(&ticks_, &QTimer::timeout, this, &CommandMonitor::Tick);
}

CommandMonitor::~CommandMonitor()
{
    runtime_.handlers.commandStarted = {};
    runtime_.handlers.commandEnded = {};
    runtime_.handlers.commandProgress = {};
}

QString CommandMonitor::Text() const
{
    QString text = isRunning_ ? DescribeRunning(command_) : result_;
    if (percent_ && !text.isEmpty()) {
        text = tr("%1, %2 %").arg(text, QString::number(*percent_));
    }
    const auto seconds = elapsed_.isValid() ? elapsed_.elapsed() / 1000 : 0;
    return isRunning_ && !text.isEmpty() && std::chrono::seconds(seconds) >= kLong
               ? tr("%1 (%2 s)").arg(text).arg(seconds)
               : text;
}

void CommandMonitor::Begin(const std::vector<std::string>& words)
{
    command_ = ParseBoardCommand(words);
    isRunning_ = true;
    result_.clear();
    elapsed_.start();
    ticks_.start(kTick);
    Q_EMIT Started();
    Q_EMIT Changed();
}

void CommandMonitor::End(const std::vector<std::string>& words, Runtime::CommandEnd end)
{
    isRunning_ = false;
    percent_.reset();
    if (command_.kind != BoardCommand::Kind::Other) {
        result_ = end.isStopped ? tr("Stopped") : end.status == 0 ? tr("Finished") : tr("Failed");
    }
    elapsed_.start();
    Q_EMIT Changed();
    Q_EMIT Ended(command_, end);
    if (end.isStopped && !DescribeStopped(command_).isEmpty()) {
        Q_EMIT Interrupted(command_, words);
    }
}

void CommandMonitor::NoteProgress(Progress progress)
{
    const int percent =
        static_cast<int>(100 * std::clamp(progress.done, 0L, progress.total) / progress.total);
    if (isRunning_ && std::exchange(percent_, percent) != percent) {
        Q_EMIT Changed();
    }
}

void CommandMonitor::Tick()
{
    if (!isRunning_ && std::chrono::milliseconds(elapsed_.elapsed()) >= kResultTime) {
        ticks_.stop();
        result_.clear();
    }
    Q_EMIT Changed();
}

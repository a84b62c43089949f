#include "batch.h"

#include <QTimer>

#include <chrono>
#include <cstdio>
#include <utility>

Batch::Batch(PluginHost& host, Runtime& runtime, const PluginModule& plugin,
             std::vector<BatchCommand> commands, std::function<void(int)> onEnd)
    : host_(host),
      runtime_(runtime),
      plugin_(plugin),
      commands_(std::move(commands)),
      onEnd_(std::move(onEnd))
{
    runtime_.handlers.idle = [this] {
        if (std::exchange(awaitsIdle_, false)) {
            Next();
        }
    };
}

// By way of the queue, so that everything posted before has arrived.
void Batch::GoOnWhenIdle()
{
    runtime_.queue().Post([this] {
        if (runtime_.IsIdle()) {
            Next();
        } else {
            awaitsIdle_ = true;
        }
    });
}

void Batch::Next()
{
    if (next_ == commands_.size()) {
        return onEnd_(status_);
    }
    const BatchCommand& command = commands_[next_++];
    if (const auto* wait = std::get_if<Wait>(&command)) {
        const auto time = std::chrono::ceil<std::chrono::milliseconds>(*wait);
        QTimer::singleShot(time, Qt::PreciseTimer, &timerContext_, [this] { Next(); });
        return;
    }
    if (const auto* row = std::get_if<const PluginCommand*>(&command)) {
        Perform(**row);
    } else {
        host_.InsertInWorksheet(plugin_.Help(), "", 1, 1, -1);
    }
    if (next_ < commands_.size() && std::holds_alternative<Wait>(commands_[next_])) {
        Next();
    } else {
        GoOnWhenIdle();
    }
}

void Batch::Perform(const PluginCommand& command)
{
    if (command.needsFile && !host_.HasRunnable()) {
        Fail("there is no Python document or target to act on");
    }
    if (!host_.Perform(command)) {
        Fail("the plug-in does not know this command");
    }
}

void Batch::Fail(const char* message)
{
    std::fprintf(stderr, "quilp-editor: %s\n", message);
    status_ = 1;
}

void Batch::Interrupt(int status)
{
    next_ = commands_.size();
    Perform(*FindCommandByName("QuilpStop"));
    status_ = status;
    GoOnWhenIdle();
}

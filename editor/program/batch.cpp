#include "batch.h"

#include "main_program.h"
#include "prompt_run.h"

#include <QTimer>

#include <chrono>
#include <cstdio>
#include <string>
#include <utility>

Batch::Batch(PluginHost& host, Runtime& runtime, const PluginModule& plugin, BoardTool& tool,
             std::vector<BatchCommand> commands, std::function<void(int)> onFinished)
    : host_(host),
      runtime_(runtime),
      plugin_(plugin),
      tool_(tool),
      commands_(std::move(commands)),
      onFinished_(std::move(onFinished))
{
    runtime_.handlers.idle = [this] {
        if (std::exchange(waitingForIdle_, false)) {
            RunNext();
        }
    };
}

// Through the queue, so that everything posted before is processed first.
void Batch::ContinueWhenIdle()
{
    runtime_.queue().Post([this] {
        if (runtime_.IsIdle()) {
            RunNext();
        } else {
            waitingForIdle_ = true;
        }
    });
}

void Batch::RunNext()
{
    if (next_ == commands_.size()) {
        return onFinished_(status_);
    }
    const BatchCommand& command = commands_[next_++];
    if (const auto* wait = std::get_if<Wait>(&command)) {
        const auto time = std::chrono::ceil<std::chrono::milliseconds>(*wait);
        QTimer::singleShot(time, Qt::PreciseTimer, &timerContext_, [this] { RunNext(); });
        return;
    }
    std::visit([this](const auto& alternative) { Perform(alternative); }, command);
    if (next_ < commands_.size() && std::holds_alternative<Wait>(commands_[next_])) {
        RunNext();
    } else {
        ContinueWhenIdle();
    }
}

void Batch::Perform(const PluginCommand* command)
{
    if (command->needsFile && !host_.HasRunnable()) {
        Fail("no Python document or target to act on");
    }
    if (!host_.Perform(*command)) {
        Fail("the plug-in does not support this command");
    }
}

void Batch::Perform(const ShowHelp&)
{
    Runtime::Protect([this] { host_.InsertInWorksheet(plugin_.Help(), "", 1, 1, -1); });
}

void Batch::Perform(const Restart&)
{
    tool_.Run({"soft-reset"}, [this](int status) {
        if (status != 0) {
            Fail("the board could not be restarted");
        }
    });
}

void Batch::Perform(const RunMain&)
{
    const auto print = [this](const std::string& line) {
        if (line.starts_with(kNoMainProgram)) {
            Fail(kNoMainProgram);
        } else {
            host_.InsertInWorksheet(line, "", 1, 1, -1);
        }
    };
    tool_.Run(RunMainCommand(), print, {});
}

void Batch::Perform(const Prompt& command)
{
    if (!RunAtPrompt(tool_, command.text)) {
        Fail("prompt= without a text to run");
    }
}

void Batch::Fail(std::string_view message)
{
    std::fprintf(stderr, "quilp-editor: %s\n", std::string(message).c_str());
    status_ = 1;
}

void Batch::Interrupt(int status)
{
    next_ = commands_.size();
    Perform(FindCommandByName("QuilpStop"));
    status_ = status;
    ContinueWhenIdle();
}

#include "board_prompt.h"

#include "command_monitor.h"
#include "host_messages.h"
#include "input_field.h"
#include "output_view.h"
#include "prompt_code.h"
#include "prompt_run.h"

#include <QPointer>

#include <chrono>
#include <memory>
#include <utility>

namespace {

using Kind = BoardCommand::Kind;

// A command of the prompt usually ends sooner. What is entered meanwhile runs after it, as when
// typing faster than an interactive prompt answers.
constexpr std::chrono::milliseconds kInputDelay{500};

std::string EchoOf(std::string text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    for (auto at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1)) {
        text.insert(at + 1, "... ");
    }
    return ">>> " + text + "\n";
}

}  // namespace

BoardPrompt::BoardPrompt(Runtime& runtime, const Parts& parts, QObject* parent)
    : QObject(parent), runtime_(runtime), parts_(parts)
{
    connect(&parts_.field, &InputField::Entered, this, &BoardPrompt::Enter);
    connect(&parts_.field, &InputField::EndOfInput, this, &BoardPrompt::EndInput);
    connect(&parts_.field, &InputField::CompletionRequested, this, &BoardPrompt::Complete);
    connect(&parts_.monitor, &CommandMonitor::Started, this, &BoardPrompt::OnStarted);
    connect(&parts_.monitor, &CommandMonitor::Ended, this,
            [this](const auto&, Runtime::CommandEnd end) { OnEnded(end.isStopped); });
    inputTimer_.setSingleShot(true);
    inputTimer_.setInterval(kInputDelay);
    connect(&inputTimer_, &QTimer::timeout, this, [this] { parts_.field.ShowInput({}); });
}

void BoardPrompt::RunLines(const QString& code)
{
    if (!code.trimmed().isEmpty()) {
        Run(code);
    }
}

void BoardPrompt::Enter(const QString& text)
{
    if (!parts_.field.isPrompt()) {
        return SendLines(text);
    }
    parts_.field.Accept();
    if (text.trimmed().isEmpty()) {
        return;
    }
    waiting_.append(text);
    parts_.field.ShowPrompt(true);
    RunWaiting();
}

// A carriage return ends each line, as it does on a terminal.
void BoardPrompt::SendLines(QString text)
{
    const QString lines = text.replace('\n', '\r') + '\r';
    if (!runtime_.SendInput(JobGroup::Board, lines.toStdString())) {
        return parts_.messages.Report(tr("The program has not read the earlier input yet."));
    }
    parts_.field.Accept();
}

void BoardPrompt::EndInput()
{
    runtime_.SendInput(JobGroup::Board, "\x04");
}

void BoardPrompt::Run(const QString& text)
{
    const std::string code = RemoveCommonIndentation(text.toStdString());
    echo_ = EchoOf(code);
    if (!RunAtPrompt(parts_.tool, code)) {
        parts_.messages.Report(tr("This text cannot be run on the board."));
    }
}

void BoardPrompt::RunWaiting()
{
    if (!waiting_.isEmpty() && !parts_.monitor.IsRunning()) {
        Run(waiting_.takeFirst());
        parts_.field.ShowPrompt(!waiting_.isEmpty());
    }
}

// Only while nothing runs: there is one port.
void BoardPrompt::Complete(const QString& textBeforeCaret)
{
    const auto request = FindCompletion(textBeforeCaret.toStdString());
    if (!request || parts_.monitor.IsRunning()) {
        return;
    }
    const auto answer = std::make_shared<std::string>();
    const QPointer field(&parts_.field);
    parts_.tool.Run(
        CompletionCommand(request->object), [answer](const std::string& text) { *answer += text; },
        [answer, field, request](int status) {
            if (field && status == 0) {
                field->Complete(request->stem, ParseCompletions(*answer, *request));
            }
        });
}

void BoardPrompt::OnStarted()
{
    const auto& command = parts_.monitor.command();
    const std::string echo = std::exchange(echo_, {});
    if (command.kind == Kind::Prompt) {
        parts_.output.AppendLines(echo);
        inputTimer_.start();
    }
    parts_.output.BeginCommand();
    if (command.kind == Kind::Prompt || command.kind == Kind::Run) {
        parts_.output.FollowEnd();
    }
    if (command.kind == Kind::Run) {
        parts_.field.ShowInput(command.subject);
    }
}

void BoardPrompt::OnEnded(bool isStopped)
{
    inputTimer_.stop();
    parts_.output.EndCommand();
    if (isStopped) {
        waiting_.clear();
    }
    parts_.field.ShowPrompt(!waiting_.isEmpty());
    // Later, because a command that waits for the port starts first.
    QTimer::singleShot(0, this, &BoardPrompt::RunWaiting);
}

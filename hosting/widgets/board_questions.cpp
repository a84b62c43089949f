#include "board_questions.h"

#include "command_monitor.h"
#include "host_messages.h"

#include <utility>

using Topic = HostMessages::Topic;

BoardQuestions::BoardQuestions(BoardActions& actions, CommandMonitor& commands,
                               BoardActions::Parts parts, QObject* parent)
    : QObject(parent), actions_(actions), parts_(std::move(parts))
{
    connect(&parts_.board, &BoardMonitor::ChoiceNeeded, this, &BoardQuestions::OfferBoards);
    connect(&parts_.board, &BoardMonitor::Changed, this, &BoardQuestions::WithdrawAnsweredBoards);
    connect(&parts_.board, &BoardMonitor::Failed, this,
            [this](const QString& error) { parts_.messages.Report(error); });
    connect(&commands, &CommandMonitor::Interrupted, this, &BoardQuestions::ReportInterrupted);
    connect(&commands, &CommandMonitor::Started, this, [this, &commands] {
        if (commands.command().kind == BoardCommand::Kind::Upload) {
            parts_.messages.Withdraw(Topic::Upload);
        }
    });
    connect(&commands, &CommandMonitor::Ended, this,
            [this](const BoardCommand&, Runtime::CommandEnd end) {
                if (!end.isStopped && end.status != 0) {
                    OfferVirtualBoard();
                }
            });
}

void BoardQuestions::OfferBoards()
{
    std::vector<MessageChoice> choices;
    choices.reserve(parts_.board.ports().size() + 1);
    for (const auto& port : parts_.board.ports()) {
        choices.push_back({DescribePort(port), [this, port] { actions_.UseBoard(port); }});
    }
    choices.push_back({tr("Later"), [] {}});
    parts_.messages.Ask(Topic::Board,
                        tr("Several boards are attached. Which one do you want to use?"), choices);
}

// A command failed, perhaps because there is no board.
void BoardQuestions::OfferVirtualBoard()
{
    const auto& board = parts_.board.board();
    if (board.IsAttached() || parts_.board.HasVirtualBoard()) {
        return;
    }
    const QString problem =
        board.kind == BoardMonitor::Kind::Missing
            ? tr("The chosen board, %1, is not attached.").arg(DescribePort(board.port))
            : tr("No board is attached.");
    parts_.messages.Ask(
        Topic::Board, problem + " " + tr("The virtual board runs programs, too."),
        {{tr("Attach Virtual Board"), [this] { actions_.UseVirtualBoard(); }}, {tr("OK"), [] {}}});
}

// A board that has been attached answers the offer of the virtual one.
void BoardQuestions::WithdrawAnsweredBoards()
{
    const bool mustChoose = parts_.board.ports().size() > 1 && !parts_.board.choice();
    if (parts_.board.board().IsAttached() &&
        (!mustChoose || parts_.board.board().kind == BoardMonitor::Kind::Virtual)) {
        parts_.messages.Withdraw(Topic::Board);
    }
}

void BoardQuestions::ReportInterrupted(const BoardCommand& command,
                                       const std::vector<std::string>& words)
{
    const QString report = DescribeStopped(command);
    if (command.kind != BoardCommand::Kind::Upload) {
        return parts_.messages.Report(report);
    }
    const std::vector<std::string> again(words.begin() + 1, words.end());  // Without the tool.
    parts_.messages.Ask(
        Topic::Upload, report,
        {{tr("Upload Again"), [this, again] { parts_.tool.Run(again); }}, {tr("OK"), [] {}}});
}

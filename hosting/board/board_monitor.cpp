#include "board_monitor.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace {

constexpr std::chrono::seconds kPollInterval{1};
constexpr std::chrono::milliseconds kStartPollInterval{10};

// The variable with the path of the only serial device that the tool's launcher shows to the tool.
constexpr const char* kBoardVariable = "QUILP_BOARD";
// The path of no device: that of the chosen board belongs to another board now.
constexpr const char* kNoDevice = "/dev/quilp-no-board";

}  // namespace

bool BoardMonitor::Board::IsSame(const Board& other) const
{
    return kind == other.kind && IsSameBoard(port, other.port);
}

BoardMonitor::BoardMonitor(std::string program, std::string boardFolder, FindPorts findPorts,
                           QObject* parent)
    : QObject(parent),
      program_(std::move(program)),
      boardFolder_(std::move(boardFolder)),
      findPorts_(std::move(findPorts))
{
    connect(&timer_, &QTimer::timeout, this, &BoardMonitor::Poll);
    timer_.start(kPollInterval);
    startTimer_.setInterval(kStartPollInterval);
    connect(&startTimer_, &QTimer::timeout, this, &BoardMonitor::PollStart);
    if (const char* const node = std::getenv(kBoardVariable); node != nullptr && *node != '\0') {
        choice_ = BoardPort{node, {}, {}};
        isBoardNamed_ = isChosenByEnvironment_ = true;
        VirtualBoard::ForgetNamedLink();  // The tool ignores it, too.
    }
    board_ = FindBoard();
}

BoardMonitor::~BoardMonitor()
{
    if (isBoardNamed_) {
        unsetenv(kBoardVariable);
    }
}

// Brings the list of ports up to date, too.
BoardMonitor::Board BoardMonitor::FindBoard()
{
    ports_ = findPorts_();
    if (virtualBoard_ && !IsStarting()) {
        return {Kind::Virtual, {}};
    }
    std::error_code ignored;
    const std::string link = VirtualBoard::NamedLink();
    if (!link.empty() && std::filesystem::exists(link, ignored)) {
        return {Kind::Virtual, {link, {}, {}}};
    }
    if (!choice_ && !link.empty()) {
        return {Kind::Missing, {link, {}, {}}};
    }
    if (!choice_) {
        return ports_.empty() ? Board() : Board{Kind::Real, ports_.front()};
    }
    const auto found = std::ranges::find_if(
        ports_, [this](const BoardPort& port) { return IsSameBoard(*choice_, port); });
    if (found != ports_.end()) {
        return {Kind::Real, *found};
    }
    // The user may name a device that is not in the list, or a link to one.
    const bool exists = choice_->id.empty() && std::filesystem::exists(choice_->node, ignored);
    return {exists ? Kind::Real : Kind::Missing, *choice_};
}

// While the virtual board is attached, its own variable makes it the only one. Without a choice the
// tool takes the first board that no other program uses.
void BoardMonitor::NameBoard()
{
    const bool names = choice_ && board_.kind != Kind::Virtual;
    if (names) {
        const auto& node = board_.port.node;
        const bool isTaken = board_.kind == Kind::Missing &&
                             std::ranges::find(ports_, node, &BoardPort::node) != ports_.end();
        setenv(kBoardVariable, isTaken ? kNoDevice : node.c_str(), 1);
    } else if (isBoardNamed_) {
        unsetenv(kBoardVariable);
    }
    isBoardNamed_ = names;
}

void BoardMonitor::Poll()
{
    if (virtualBoard_ && !IsStarting() && !virtualBoard_->IsRunning()) {
        const std::string report = virtualBoard_->ExitReport();
        virtualBoard_.reset();
        Fail(report);
    }
    const auto before = std::exchange(board_, FindBoard());
    NameBoard();
    if (board_ != before) {
        firmware_.clear();
        Q_EMIT Changed();
    }
    const bool mustChoose = ports_.size() > 1 && !choice_ && !HasVirtualBoard();
    if (mustChoose && !std::exchange(hasAsked_, true)) {
        Q_EMIT ChoiceNeeded();
    }
}

void BoardMonitor::Choose(std::optional<BoardPort> port)
{
    choice_ = userChoice_ = std::move(port);
    isChosenByEnvironment_ = false;
    hasAsked_ = true;
    DetachVirtualBoard();
}

void BoardMonitor::RestoreChoice(BoardPort port)
{
    userChoice_ = std::move(port);
    if (!isChosenByEnvironment_) {
        choice_ = userChoice_;
    }
    hasAsked_ = true;
    Poll();
}

void BoardMonitor::SetFirmware(const QString& firmware)
{
    if (std::exchange(firmware_, firmware) != firmware) {
        Q_EMIT Changed();
    }
}

void BoardMonitor::AttachVirtualBoard()
{
    if (virtualBoard_) {
        return;
    }
    auto board = VirtualBoard::Start(program_, boardFolder_);
    if (!board) {
        return Fail(board.error());
    }
    virtualBoard_.emplace(std::move(*board));
    startTimer_.start();
}

void BoardMonitor::PollStart()
{
    const auto isReady = virtualBoard_->CheckReady();
    if (!isReady) {
        DetachVirtualBoard();
        return Fail(isReady.error());
    }
    if (*isReady) {
        startTimer_.stop();
        Poll();
    }
}

void BoardMonitor::DetachVirtualBoard()
{
    startTimer_.stop();
    virtualBoard_.reset();
    VirtualBoard::ForgetNamedLink();
    Poll();
}

std::string BoardMonitor::pinsPath() const
{
    if (board_.kind != Kind::Virtual) {
        return {};
    }
    return virtualBoard_ && !IsStarting() ? virtualBoard_->pinsPath()
                                          : VirtualBoard::NamedPinsPath();
}

void BoardMonitor::Fail(const std::string& error)
{
    Q_EMIT Failed(QString::fromStdString(error));
}

#include "board_monitor.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::chrono::seconds kPollInterval{1};
constexpr std::chrono::milliseconds kStartPollInterval{10};

// The names of a board's own USB port and of a USB serial adapter on Linux and on macOS.
constexpr std::array<std::string_view, 4> kNodes{"ttyACM", "ttyUSB", "cu.usbmodem", "cu.usbserial"};

}  // namespace

BoardMonitor::BoardMonitor(std::string program, std::string boardFolder, QObject* parent)
    : QObject(parent), program_(std::move(program)), boardFolder_(std::move(boardFolder))
{
    connect(&timer_, &QTimer::timeout, this, &BoardMonitor::Poll);
    timer_.start(kPollInterval);
    startTimer_.setInterval(kStartPollInterval);
    connect(&startTimer_, &QTimer::timeout, this, &BoardMonitor::PollStart);
    Poll();
}

std::string BoardMonitor::FindRealBoard()
{
    std::vector<std::string> found;
    std::error_code error;
    std::filesystem::directory_iterator entry("/dev", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (std::ranges::any_of(kNodes, [&](auto prefix) { return name.starts_with(prefix); })) {
            found.push_back(entry->path().string());
        }
    }
    return found.empty() ? std::string() : *std::ranges::min_element(found);
}

void BoardMonitor::Poll()
{
    if (virtualBoard_ && !IsStarting() && !virtualBoard_->IsRunning()) {
        const std::string report = virtualBoard_->ExitReport();
        virtualBoard_.reset();
        Fail(report);
    }
    Board now;
    if (virtualBoard_ && !IsStarting()) {
        now.kind = Kind::Virtual;
    } else if (now.node = FindRealBoard(); !now.node.empty()) {
        now.kind = Kind::Real;
    }
    if (std::exchange(board_, now) != now) {
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
    Poll();
}

void BoardMonitor::Fail(const std::string& error)
{
    Q_EMIT Failed(QString::fromStdString(error));
}

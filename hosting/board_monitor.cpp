#include "board_monitor.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::chrono::seconds kLookEvery{1};
constexpr std::chrono::milliseconds kLookAtStartEvery{10};

// Linux's names for a board's own USB port and for a USB serial adapter, then macOS's.
constexpr std::array<std::string_view, 4> kNodes{"ttyACM", "ttyUSB", "cu.usbmodem", "cu.usbserial"};

}  // namespace

BoardMonitor::BoardMonitor(std::string program, std::string boardFolder, QObject* parent)
    : QObject(parent), program_(std::move(program)), boardFolder_(std::move(boardFolder))
{
    connect(&timer_, &QTimer::timeout, this, &BoardMonitor::Look);
    timer_.start(kLookEvery);
    startTimer_.setInterval(kLookAtStartEvery);
    connect(&startTimer_, &QTimer::timeout, this, &BoardMonitor::LookAtStart);
    Look();
}

std::string BoardMonitor::FindRealBoard()
{
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev", error)) {
        const std::string name = entry.path().filename().string();
        if (std::ranges::any_of(kNodes, [&](auto prefix) { return name.starts_with(prefix); })) {
            found.push_back(entry.path().string());
        }
    }
    return found.empty() ? std::string() : *std::ranges::min_element(found);
}

void BoardMonitor::Look()
{
    if (virtualBoard_ && !IsStarting() && !virtualBoard_->IsRunning()) {
        virtualBoard_.reset();
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

void BoardMonitor::LookAtStart()
{
    const auto isReady = virtualBoard_->CheckReady();
    if (!isReady) {
        UnplugVirtualBoard();
        return Fail(isReady.error());
    }
    if (*isReady) {
        startTimer_.stop();
        Look();
    }
}

void BoardMonitor::UnplugVirtualBoard()
{
    startTimer_.stop();
    virtualBoard_.reset();
    Look();
}

void BoardMonitor::Fail(const std::string& error)
{
    Q_EMIT Failed(QString::fromStdString(error));
}

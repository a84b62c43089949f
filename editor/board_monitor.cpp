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

// Linux's names for a board's own USB port and for a USB serial adapter, then macOS's.
constexpr std::array<std::string_view, 4> kNodes{"ttyACM", "ttyUSB", "cu.usbmodem", "cu.usbserial"};

}  // namespace

BoardMonitor::BoardMonitor(std::string program, std::string boardFolder, QObject* parent)
    : QObject(parent), program_(std::move(program)), boardFolder_(std::move(boardFolder))
{
    connect(&timer_, &QTimer::timeout, this, &BoardMonitor::Look);
    timer_.start(kLookEvery);
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
    if (virtualBoard_ && !virtualBoard_->IsRunning()) {
        virtualBoard_.reset();
    }
    Board now;
    if (virtualBoard_) {
        now.kind = Kind::Virtual;
    } else if (now.node = FindRealBoard(); !now.node.empty()) {
        now.kind = Kind::Real;
    }
    if (std::exchange(board_, now) != now) {
        Q_EMIT Changed();
    }
}

std::expected<void, std::string> BoardMonitor::AttachVirtualBoard()
{
    if (virtualBoard_) {
        return {};
    }
    auto board = VirtualBoard::Start(program_, boardFolder_);
    if (!board) {
        return std::unexpected(board.error());
    }
    virtualBoard_.emplace(std::move(*board));
    Look();
    return {};
}

void BoardMonitor::UnplugVirtualBoard()
{
    virtualBoard_.reset();
    Look();
}

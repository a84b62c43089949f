#include "board_process.h"

#include "descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>

#include <filesystem>
#include <stdexcept>

BoardLine::BoardLine(const std::string& device)
    : fd_(open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
}

BoardLine::~BoardLine()
{
    CloseDescriptor(fd_);
}

void BoardLine::Send(std::string_view text) const
{
    WriteFully(fd_, text);
}

std::string BoardLine::ReadTo(std::string_view text, std::chrono::milliseconds patience)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (pending_.find(text) == std::string::npos && std::chrono::steady_clock::now() < end) {
        pollfd readable{fd_, POLLIN, 0};
        poll(&readable, 1, 20);
        pending_ += ReadAvailable(fd_);
    }
    const auto at = pending_.find(text);
    const auto size = at == std::string::npos ? pending_.size() : at + text.size();
    const std::string taken = pending_.substr(0, size);
    pending_.erase(0, size);
    return taken;
}

BoardProcess::BoardProcess(const Files& files)
{
    for (const auto& [name, content] : files) {
        files_.Write(name, content);
    }
    Start();
}

void BoardProcess::Start()
{
    process_ = std::make_unique<BackgroundProgram>(
        std::vector<std::string>{QUILP_BIN "/virtual-board", "--link", link(), files_.path()});
    if (!process_->WaitForOutput("\n")) {
        throw std::runtime_error("the board did not start: " + process_->output());
    }
}

std::string BoardProcess::devicePath() const
{
    return std::filesystem::read_symlink(link()).string();
}

bool BoardProcess::isPlugged() const
{
    return std::filesystem::is_symlink(link());
}

void BoardProcess::Unplug()
{
    process_->Signal(SIGUSR1);
    WaitUntil([this] { return !isPlugged(); });
}

void BoardProcess::Plug()
{
    process_->Signal(SIGUSR2);
    WaitUntil([this] { return isPlugged(); });
}

std::vector<std::string> BoardProcess::variables() const
{
    return {"QUILP_VIRTUAL_BOARD=" + link()};
}

ProgramResult BoardProcess::Tool(const std::vector<std::string>& words) const
{
    std::vector<std::string> line{QUILP_MPREMOTE};
    line.insert(line.end(), words.begin(), words.end());
    return RunProgram(line, variables());
}

bool BoardProcess::IsAtPrompt() const
{
    BoardLine line(devicePath());
    line.Send("\r");
    return line.ReadTo(">>> ", std::chrono::seconds(1)).ends_with(">>> ");
}

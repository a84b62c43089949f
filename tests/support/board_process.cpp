#include "board_process.h"

#include "descriptors.h"

#include <fcntl.h>
#include <signal.h>

#include <filesystem>
#include <stdexcept>
#include <utility>

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
    const auto hasArrived = [&] {
        pending_ += ReadAvailable(fd_);
        return pending_.find(text) != std::string::npos;
    };
    WaitUntil(hasArrived, patience);
    const auto at = pending_.find(text);
    auto rest = at == std::string::npos ? "" : pending_.substr(at + text.size());
    pending_.resize(pending_.size() - rest.size());
    return std::exchange(pending_, std::move(rest));
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

void BoardProcess::SetPlugged(bool plugged)
{
    process_->Signal(plugged ? SIGUSR2 : SIGUSR1);
    WaitUntil([&] { return std::filesystem::is_symlink(link()) == plugged; });
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
    // An answer of its own: the board prints its first prompt at any time.
    const std::string answer = "'ready'\r\n'ready'\r\n>>> ";
    BoardLine line(devicePath());
    return WaitUntil([&] {
        line.Send("\r'ready'\r");
        return line.ReadTo(answer, std::chrono::seconds(1)).ends_with(answer);
    });
}

#include "board_process.h"

#include "descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

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
    const int fd = open(devicePath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    std::string answer;
    if (fd >= 0 && WriteFully(fd, "\r")) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (!answer.ends_with(">>> ") && std::chrono::steady_clock::now() < end) {
            pollfd readable{fd, POLLIN, 0};
            poll(&readable, 1, 20);
            answer += ReadAvailable(fd);
        }
    }
    CloseDescriptor(fd);
    return answer.ends_with(">>> ");
}

#include "virtual_board.h"

#include "descriptors.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace {

// The tool's launcher looks for a virtual board at this path.
constexpr const char* kLinkVariable = "QUILP_VIRTUAL_BOARD";

constexpr std::chrono::seconds kStartPatience{10};
constexpr std::chrono::milliseconds kEndPatience{500};
constexpr std::chrono::duration<int, std::milli> kLookEvery{100};

std::string MakePrivateFolder()
{
    std::error_code error;
    std::string pattern =
        (std::filesystem::temp_directory_path(error) / "quilp-board-XXXXXX").string();
    return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

std::string LinkIn(const std::string& folder)
{
    return folder + "/port";
}

}  // namespace

VirtualBoard::VirtualBoard(ChildProcess process, std::string linkFolder)
    : process_(std::move(process)),
      linkFolder_(std::move(linkFolder)),
      latest_(std::chrono::steady_clock::now() + kStartPatience)
{
}

std::expected<VirtualBoard, std::string> VirtualBoard::Start(const std::string& program,
                                                             const std::string& folder)
{
    const std::string linkFolder = MakePrivateFolder();
    if (linkFolder.empty()) {
        return std::unexpected("no temporary folder can be made for the virtual board");
    }
    auto process = ChildProcess::Start(
        {program, "--parent", std::to_string(getpid()), "--link", LinkIn(linkFolder), "--", folder},
        CurrentEnvironment());
    if (!process) {
        std::filesystem::remove(linkFolder);
        return std::unexpected("the virtual board cannot be started: " + process.error());
    }
    return VirtualBoard(std::move(*process), linkFolder);
}

std::expected<bool, std::string> VirtualBoard::CheckReady()
{
    // Asked first, so that nothing is said after it.
    const bool isOver = process_.HasExited() || std::chrono::steady_clock::now() >= latest_;
    said_ += ReadAvailable(process_.outputFd());
    const auto end = said_.find('\n');
    if (end == std::string::npos && !isOver) {
        return false;
    }
    const std::string line = said_.substr(0, end);
    if (!line.starts_with("/dev/")) {
        return std::unexpected("the virtual board did not start: " +
                               (line.empty() ? "it says nothing" : line));
    }
    setenv(kLinkVariable, LinkIn(linkFolder_).c_str(), 1);
    return true;
}

std::expected<void, std::string> VirtualBoard::WaitUntilReady()
{
    for (;;) {
        if (const auto isReady = CheckReady(); !isReady) {
            return std::unexpected(isReady.error());
        } else if (*isReady) {
            return {};
        }
        pollfd output{process_.outputFd(), POLLIN, 0};
        poll(&output, 1, kLookEvery.count());
    }
}

VirtualBoard::~VirtualBoard()
{
    if (linkFolder_.empty()) {
        return;  // Moved away.
    }
    process_.Terminate(kEndPatience);
    unsetenv(kLinkVariable);
    std::error_code ignored;
    std::filesystem::remove_all(linkFolder_, ignored);
}

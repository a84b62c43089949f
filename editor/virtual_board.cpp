#include "virtual_board.h"

#include "descriptors.h"

#include <glib.h>
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

std::string MakePrivateFolder()
{
    std::error_code error;
    std::string pattern =
        (std::filesystem::temp_directory_path(error) / "quilp-board-XXXXXX").string();
    return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

// The first line of output, or what there was of it when the time was up or the program ended.
std::string ReadFirstLine(const ChildProcess& process)
{
    std::string text;
    const auto end = std::chrono::steady_clock::now() + kStartPatience;
    while (!text.ends_with('\n') && std::chrono::steady_clock::now() < end) {
        pollfd output{process.outputFd(), POLLIN, 0};
        poll(&output, 1, 100);
        const std::string bytes = ReadAvailable(process.outputFd());
        if (bytes.empty() && (output.revents & POLLHUP) != 0) {
            break;
        }
        text += bytes;
    }
    while (text.ends_with('\n')) {
        text.pop_back();
    }
    return text;
}

}  // namespace

VirtualBoard::VirtualBoard(ChildProcess process, std::string linkFolder)
    : process_(std::move(process)), linkFolder_(std::move(linkFolder))
{
}

std::expected<VirtualBoard, std::string> VirtualBoard::Start(const std::string& program,
                                                             const std::string& folder)
{
    const std::string linkFolder = MakePrivateFolder();
    if (linkFolder.empty()) {
        return std::unexpected("no temporary folder can be made for the virtual board");
    }
    const std::string link = linkFolder + "/port";
    auto process = ChildProcess::Start(
        {program, "--parent", std::to_string(getpid()), "--link", link, "--", folder},
        CurrentEnvironment());
    if (!process) {
        std::filesystem::remove(linkFolder);
        return std::unexpected("the virtual board cannot be started: " + process.error());
    }
    VirtualBoard board(std::move(*process), linkFolder);
    const std::string line = ReadFirstLine(board.process_);
    if (!line.starts_with("/dev/")) {
        return std::unexpected("the virtual board did not start: " +
                               (line.empty() ? "it says nothing" : line));
    }
    setenv(kLinkVariable, link.c_str(), 1);
    return board;
}

VirtualBoard::~VirtualBoard()
{
    if (linkFolder_.empty()) {
        return;  // Moved away.
    }
    process_.End(kEndPatience);
    unsetenv(kLinkVariable);
    std::error_code ignored;
    std::filesystem::remove_all(linkFolder_, ignored);
}

std::string DefaultBoardFolder()
{
    return std::string(g_get_user_data_dir()) + "/quilp/virtual-board";
}

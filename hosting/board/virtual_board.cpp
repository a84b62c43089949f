#include "virtual_board.h"

#include "descriptors.h"
#include "local_socket.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace {

// The variable with the path at which the tool's launcher searches for a virtual board.
constexpr const char* kLinkVariable = "QUILP_VIRTUAL_BOARD";

constexpr std::chrono::seconds kStartTimeout{10};
constexpr std::chrono::milliseconds kStopTimeout{500};
constexpr std::chrono::duration<int, std::milli> kOutputWait{100};

std::string MakePrivateFolder()
{
    std::error_code error;
    auto parent = std::filesystem::temp_directory_path(error);
    if (error) {
        parent = "/tmp";  // TMPDIR names no folder.
    }
    std::string pattern = (parent / "quilp-board-XXXXXX").string();
    return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

std::string LinkIn(const std::string& folder)
{
    return folder + "/port";
}

std::string PinsIn(const std::string& folder)
{
    return folder + "/pins";
}

}  // namespace

VirtualBoard::VirtualBoard(ChildProcess process, std::string linkFolder)
    : process_(std::move(process)),
      linkFolder_(std::move(linkFolder)),
      deadline_(std::chrono::steady_clock::now() + kStartTimeout)
{
}

std::expected<VirtualBoard, std::string> VirtualBoard::Start(const std::string& program,
                                                             const std::string& folder)
{
    const std::string linkFolder = MakePrivateFolder();
    if (linkFolder.empty()) {
        return std::unexpected(
            "The virtual board cannot be started: cannot create a temporary folder");
    }
    std::vector<std::string> words{program, "--parent", std::to_string(getpid()), "--link",
                                   LinkIn(linkFolder)};
    // In a temporary folder with a very long path the board works without its panel.
    if (const auto pins = PinsIn(linkFolder); CanBeSocketPath(pins)) {
        words.insert(words.end(), {"--pins", pins});
    }
    words.insert(words.end(), {"--", folder});
    auto process = ChildProcess::Start(words, CurrentEnvironment());
    if (!process) {
        std::error_code ignored;
        std::filesystem::remove(linkFolder, ignored);
        return std::unexpected("The virtual board cannot be started: " + process.error());
    }
    return VirtualBoard(std::move(*process), linkFolder);
}

std::expected<bool, std::string> VirtualBoard::CheckReady()
{
    // Checked before reading, so that all output of a finished process is read.
    const bool isOver = process_.HasExited() || std::chrono::steady_clock::now() >= deadline_;
    output_ += ReadAvailable(process_.outputFd());
    const auto end = output_.find('\n');
    if (end == std::string::npos && !isOver) {
        return false;
    }
    const std::string line = output_.substr(0, end);
    if (!line.starts_with("/dev/")) {
        return std::unexpected("The virtual board did not start: " +
                               (line.empty() ? "it printed nothing" : line));
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
        poll(&output, 1, kOutputWait.count());
    }
}

std::string VirtualBoard::ExitReport()
{
    output_ += ReadAvailable(process_.outputFd());
    // After the first line, which was the device.
    const std::string printed = output_.substr(std::min(output_.find('\n') + 1, output_.size()));
    const std::string reason = printed.substr(0, printed.find('\n'));
    return "The virtual board has stopped: " + (reason.empty() ? "it gave no reason" : reason);
}

std::string VirtualBoard::NamedLink()
{
    const char* const link = std::getenv(kLinkVariable);
    return link != nullptr ? link : "";
}

void VirtualBoard::ForgetNamedLink()
{
    unsetenv(kLinkVariable);
}

std::string VirtualBoard::pinsPath() const
{
    return PinsIn(linkFolder_);
}

VirtualBoard::~VirtualBoard()
{
    if (linkFolder_.empty()) {
        return;  // Moved from.
    }
    process_.Terminate(kStopTimeout);
    ForgetNamedLink();
    std::error_code ignored;
    std::filesystem::remove_all(linkFolder_, ignored);
}

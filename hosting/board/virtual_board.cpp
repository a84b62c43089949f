#include "virtual_board.h"

#include "descriptors.h"
#include "pins_path.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <utility>

namespace {

// The variable with the path at which the tool's launcher searches for a virtual board.
constexpr const char* kLinkVariable = "QUILP_VIRTUAL_BOARD";

// The variable with the path of the socket of its pins, if that is not beside the link.
constexpr const char* kPinsVariable = "QUILP_VIRTUAL_BOARD_PINS";

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

std::optional<std::string> LastLine(std::string text)
{
    while (text.ends_with('\n')) {
        text.pop_back();
    }
    return text.empty() ? std::nullopt : std::optional(text.substr(text.rfind('\n') + 1));
}

std::string FromEnvironment(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
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
    auto process = ChildProcess::Start(
        {program, "--parent", std::to_string(getpid()), "--link", LinkIn(linkFolder), "--", folder},
        CurrentEnvironment());
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
    // Warnings may come first.
    const auto begin = ("\n" + output_).find("\n/dev/");
    const auto end = output_.find('\n', begin);
    if (begin == std::string::npos || end == std::string::npos) {
        if (!isOver) {
            return false;
        }
        return std::unexpected("The virtual board did not start: " +
                               LastLine(output_).value_or("it printed nothing"));
    }
    std::fputs(output_.substr(0, begin).c_str(), stderr);
    output_.erase(0, end + 1);
    ForgetNamedLink();  // With the pins of another board.
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
    return "The virtual board has stopped: " + LastLine(output_).value_or("it gave no reason");
}

std::string VirtualBoard::NamedLink()
{
    return FromEnvironment(kLinkVariable);
}

void VirtualBoard::ForgetNamedLink()
{
    unsetenv(kLinkVariable);
    unsetenv(kPinsVariable);
}

std::string VirtualBoard::NamedPinsPath()
{
    const std::string path = FromEnvironment(kPinsVariable);
    return path.empty() ? PinsPathFor(NamedLink()) : path;
}

std::string VirtualBoard::pinsPath() const
{
    return PinsPathFor(LinkIn(linkFolder_));
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

#include "standard_input.h"

#include "board_command.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds kRetryInterval{10};
constexpr char kControlD = '\x04';

}  // namespace

StandardInput::StandardInput(Runtime& runtime)
    : runtime_(runtime), notifier_(STDIN_FILENO, QSocketNotifier::Read)
{
    notifier_.setEnabled(false);
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { Read(); });
    retry_.setSingleShot(true);
    QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] { Send(); });
    runtime_.handlers.commandStarted = [this](const auto& words) { Begin(words); };
    runtime_.handlers.commandEnded = [this](const auto&, auto) { End(); };
}

StandardInput::~StandardInput()
{
    runtime_.handlers.commandStarted = {};
    runtime_.handlers.commandEnded = {};
}

void StandardInput::Begin(const std::vector<std::string>& words)
{
    const auto kind = ParseBoardCommand(words).kind;
    if (kind == BoardCommand::Kind::Run || kind == BoardCommand::Kind::Prompt) {
        Send();
    }
}

void StandardInput::End()
{
    notifier_.setEnabled(false);
    retry_.stop();
}

void StandardInput::Read()
{
    std::array<char, 4096> bytes{};
    const ssize_t n = read(STDIN_FILENO, bytes.data(), bytes.size());
    if (n < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (n > 0) {
        unsent_.assign(bytes.data(), static_cast<std::size_t>(n));
        std::ranges::replace(unsent_, '\n', '\r');
    } else {
        unsent_ = kControlD;
        hasEnded_ = true;
    }
    Send();
}

// No more is read before this has been accepted.
void StandardInput::Send()
{
    const bool isSent = unsent_.empty() || runtime_.SendInput(JobGroup::Board, unsent_);
    if (isSent) {
        unsent_.clear();
    } else {
        retry_.start(kRetryInterval);
    }
    notifier_.setEnabled(isSent && !hasEnded_);
}

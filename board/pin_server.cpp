#include "pin_server.h"

#include "descriptors.h"
#include "local_socket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kUpdateInterval{17};
constexpr std::size_t kMaxClients = 16;
constexpr std::size_t kMaxLine = 4096;    // bytes
constexpr std::size_t kMaxErrors = 4096;  // bytes in the queue, beyond which no more are added

}  // namespace

std::expected<PinServer, std::string> PinServer::Listen(const std::string& path)
{
    PinServer server;
    server.listener_ = ListenOnLocalSocket(path, static_cast<int>(kMaxClients));
    if (server.listener_ < 0) {
        return std::unexpected("cannot serve the pins at " + path + ": " + std::strerror(errno));
    }
    server.path_ = path;
    return server;
}

PinServer::PinServer(PinServer&& other) noexcept
    : listener_(std::exchange(other.listener_, -1)),
      path_(std::exchange(other.path_, {})),
      clients_(std::exchange(other.clients_, {})),
      descriptions_(std::move(other.descriptions_)),
      isOutdated_(other.isOutdated_),
      lastUpdate_(other.lastUpdate_)
{
}

PinServer::~PinServer()
{
    for (const auto& client : clients_) {
        CloseDescriptor(client.fd);
    }
    CloseDescriptor(listener_);
    if (!path_.empty()) {
        unlink(path_.c_str());
    }
}

void PinServer::AddTo(std::vector<pollfd>& fds) const
{
    fds.push_back({listener_, POLLIN, 0});
    for (const auto& client : clients_) {
        const int writing = client.queue.empty() ? 0 : POLLOUT;
        fds.push_back({client.fd, static_cast<short>(POLLIN | writing), 0});
    }
}

bool PinServer::Serve(std::span<const pollfd> fds, PinBlock& block, bool mayChange)
{
    bool isChanged = false;
    auto client = clients_.begin();
    for (const auto& fd : fds.subspan(1)) {
        const bool isReadable = (fd.revents & (POLLIN | POLLHUP | POLLERR)) != 0;
        isChanged |= isReadable && Receive(*client, block);
        ++client;
    }
    if (fds.front().revents != 0) {
        Accept(block);
    }
    isOutdated_ |= isChanged || mayChange;
    if (const auto due = nextUpdate(mayChange); due && Clock::now() >= *due) {
        Update(block);
        isOutdated_ = mayChange;  // It could change until the next update.
    }
    for (auto& each : clients_) {
        Flush(each);
    }
    std::erase_if(clients_, [](const Client& each) { return each.fd < 0; });
    return isChanged;
}

std::optional<PinServer::Clock::time_point> PinServer::nextUpdate(bool mayChange) const
{
    if (clients_.empty() || !(isOutdated_ || mayChange)) {
        return std::nullopt;
    }
    return lastUpdate_ + kUpdateInterval;
}

void PinServer::Accept(const PinBlock& block)
{
    const int fd = AcceptConnection(listener_);
    if (fd >= 0 && clients_.size() < kMaxClients) {
        clients_.push_back({.fd = fd, .received = {}, .queue = {}, .resets = block.resets()});
        isOutdated_ = true;
    } else {
        CloseDescriptor(fd);
    }
}

// Returns whether a pin has been changed.
bool PinServer::Receive(Client& client, PinBlock& block)
{
    const std::string bytes = ReadAvailable(client.fd);
    if (bytes.empty()) {
        CloseDescriptor(std::exchange(client.fd, -1));
        return false;
    }
    client.received += bytes;
    bool isChanged = false;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = client.received.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
        const auto line = std::string_view(client.received).substr(begin, end - begin);
        if (!std::exchange(client.skipsLine, false)) {
            isChanged |= Perform(client, line, block);
        }
    }
    client.received.erase(0, begin);
    if (client.received.size() > kMaxLine) {
        client.received.clear();
        if (!std::exchange(client.skipsLine, true)) {
            Answer(client, "the line is too long");
        }
    }
    return isChanged;
}

bool PinServer::Perform(Client& client, std::string_view line, PinBlock& block)
{
    const auto performed = PerformPinMessage(line, block);
    if (!performed) {
        Answer(client, performed.error());
    }
    return performed.has_value();
}

void PinServer::Answer(Client& client, std::string_view error)
{
    if (client.queue.size() < kMaxErrors) {
        client.queue += PinErrorLine(error);
    }
}

void PinServer::Update(const PinBlock& block)
{
    lastUpdate_ = Clock::now();
    const PinLines& lines = descriptions_.Update(block);
    for (auto& client : clients_) {
        UpdateClient(client, lines, block.resets());
    }
}

void PinServer::UpdateClient(Client& client, const PinLines& lines, unsigned resets)
{
    client.isBehind = !client.queue.empty();
    if (client.isBehind) {
        return;
    }
    if (std::exchange(client.resets, resets) != resets) {
        client.queue += kPinResetLine;
        client.sent = {};
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (client.sent[i] != lines[i]) {
            client.sent[i] = lines[i];
            client.queue += lines[i];
        }
    }
}

void PinServer::Flush(Client& client)
{
    while (client.fd >= 0 && !client.queue.empty()) {
        const ssize_t n = send(client.fd, client.queue.data(), client.queue.size(), MSG_NOSIGNAL);
        if (n < 0 && errno != EAGAIN) {
            CloseDescriptor(std::exchange(client.fd, -1));
        }
        if (n <= 0) {
            return;
        }
        client.queue.erase(0, static_cast<std::size_t>(n));
    }
    isOutdated_ |= std::exchange(client.isBehind, false);
}

#include "serial_port.h"

#include "descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <tuple>
#include <utility>

#ifdef __linux__
#include <sys/inotify.h>
#endif

namespace {

constexpr std::size_t kMaxQueue = 16384;  // bytes

}  // namespace

std::expected<SerialPort, std::string> SerialPort::Open(const std::string& link)
{
    SerialPort port;
    if (!port.OpenTerminal()) {
        return std::unexpected(std::string("cannot open a pseudo-terminal: ") +
                               std::strerror(errno));
    }
    port.WatchForClients();
    if (!link.empty() && !port.Link(link)) {
        return std::unexpected("cannot create the link " + link);
    }
    return port;
}

SerialPort::SerialPort(SerialPort&& other) noexcept
    : master_(std::exchange(other.master_, -1)),
      events_(std::exchange(other.events_, -1)),
      hasClient_(other.hasClient_),
      isFlushed_(other.isFlushed_),
      device_(std::move(other.device_)),
      link_(std::exchange(other.link_, {})),
      queue_(std::move(other.queue_))
{
}

SerialPort::~SerialPort()
{
    if (!link_.empty()) {
        std::error_code ignored;
        std::filesystem::remove(link_, ignored);
    }
    CloseDescriptor(events_);
    CloseDescriptor(master_);
}

bool SerialPort::OpenTerminal()
{
    termios raw{};
    cfmakeraw(&raw);
    std::array<char, 256> name{};
    int clientEnd = -1;
    if (openpty(&master_, &clientEnd, name.data(), &raw, nullptr) != 0) {
        return false;
    }
    // From now on, the line is hung up exactly while no client has it open.
    CloseDescriptor(clientEnd);
    fcntl(master_, F_SETFD, FD_CLOEXEC);
    SetNonBlocking(master_);
    device_ = name.data();
    // From now on, each read returns a byte of events, or 0 and data.
    int on = 1;
    return ioctl(master_, TIOCPKT, &on) == 0;
}

// Events can be merged or lost, so they only indicate that it is time to check for a client.
void SerialPort::WatchForClients()
{
#ifdef __linux__
    events_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (events_ >= 0) {
        inotify_add_watch(events_, device_.c_str(), IN_OPEN);
    }
#endif
}

// Replaces an existing link atomically.
bool SerialPort::Link(const std::string& link)
{
    std::error_code error;
    const std::string temporary = link + ".new";
    std::filesystem::remove(temporary, error);
    std::filesystem::create_symlink(device_, temporary, error);
    if (!error) {
        std::filesystem::rename(temporary, link, error);
    }
    if (!error) {
        link_ = link;
    }
    return !error;
}

void SerialPort::CheckForClient()
{
    if (events_ >= 0) {
        std::ignore = ReadAvailable(events_);
    }
    pollfd line{master_, 0, 0};
    poll(&line, 1, 0);
    const bool hadClient = std::exchange(hasClient_, (line.revents & POLLHUP) == 0);
    if (hadClient && !hasClient_) {
        queue_.clear();
        tcflush(master_, TCOFLUSH);  // The next client must not receive the unread output.
    }
}

std::string SerialPort::Read()
{
    std::string bytes = ReadAvailable(master_);
    if (!bytes.empty()) {
        isFlushed_ |= (bytes.front() & (TIOCPKT_FLUSHREAD | TIOCPKT_FLUSHWRITE)) != 0;
        bytes.erase(0, 1);
    }
    CheckForClient();  // After reading, since the client that sent the bytes expects an answer.
    return bytes;
}

void SerialPort::Send(std::string_view text)
{
    if (hasClient_) {
        queue_ += text;
    }
}

void SerialPort::Flush()
{
    while (!queue_.empty()) {
        const ssize_t n = write(master_, queue_.data(), queue_.size());
        if (n <= 0) {
            return;
        }
        queue_.erase(0, static_cast<std::size_t>(n));
    }
}

bool SerialPort::isFull() const
{
    return queue_.size() > kMaxQueue;
}

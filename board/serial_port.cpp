#include "serial_port.h"

#include "descriptors.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#ifdef __linux__
#include <sys/inotify.h>
#endif

namespace {

constexpr std::size_t kFullQueue = 16384;

}  // namespace

std::expected<SerialPort, std::string> SerialPort::Open(const std::string& link)
{
    SerialPort port;
    if (!port.OpenTerminal()) {
        return std::unexpected(std::string("cannot open a pseudo-terminal: ") +
                               std::strerror(errno));
    }
    port.WatchClients();
    if (!link.empty() && !port.Link(link)) {
        return std::unexpected("cannot make the link " + link);
    }
    return port;
}

SerialPort::SerialPort(SerialPort&& other) noexcept
    : master_(std::exchange(other.master_, -1)),
      keeper_(std::exchange(other.keeper_, -1)),
      events_(std::exchange(other.events_, -1)),
      clients_(other.clients_),
      tracksClients_(other.tracksClients_),
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
    CloseDescriptor(keeper_);
    CloseDescriptor(master_);
}

bool SerialPort::OpenTerminal()
{
    termios raw{};
    cfmakeraw(&raw);
    std::array<char, 256> name{};
    if (openpty(&master_, &keeper_, name.data(), &raw, nullptr) != 0) {
        return false;
    }
    fcntl(master_, F_SETFD, FD_CLOEXEC);
    fcntl(keeper_, F_SETFD, FD_CLOEXEC);
    SetNonBlocking(master_);
    device_ = name.data();
    return true;
}

// Without a way to tell, a client counts as always there.
void SerialPort::WatchClients()
{
#ifdef __linux__
    events_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    tracksClients_ =
        events_ >= 0 && inotify_add_watch(events_, device_.c_str(), IN_OPEN | IN_CLOSE) >= 0;
#endif
}

// The link appears whole or not at all, also when an old one stands there.
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

void SerialPort::UpdateClients()
{
#ifdef __linux__
    alignas(inotify_event) std::array<char, 4096> buffer{};
    ssize_t size = 0;
    while (tracksClients_ && (size = read(events_, buffer.data(), buffer.size())) > 0) {
        for (ssize_t at = 0; at < size;) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            clients_ += (event.mask & IN_OPEN) != 0 ? 1 : -1;
            if (clients_ <= 0) {
                clients_ = 0;
                queue_.clear();
                // What the last client left unread is not for the next one.
                tcflush(keeper_, TCIFLUSH);
            }
        }
    }
#endif
}

std::string SerialPort::Read()
{
    return ReadAvailable(master_);
}

void SerialPort::Send(std::string_view text)
{
    if (clients_ > 0 || !tracksClients_) {
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
    return queue_.size() > kFullQueue;
}

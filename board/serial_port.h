#pragma once

#include <expected>
#include <string>
#include <string_view>

// The board's end of its serial line: a pseudo-terminal whose other end ("/dev/pts/N" on Linux) a
// client opens like a board on USB. Owned by the board, used on its only thread.
class SerialPort {
  public:
    // With a link path, that path is made a symbolic link to the line-device, and removed at the
    // end. The error is a sentence.
    static std::expected<SerialPort, std::string> Open(const std::string& link);
    SerialPort(SerialPort&& other) noexcept;
    SerialPort& operator=(SerialPort&&) = delete;
    ~SerialPort();

    const std::string& devicePath() const { return device_; }

    // To poll while there is a client. Without one the line is hung up.
    int fd() const { return master_; }
    // Readable when a client may have come; -1 where the system does not tell.
    int clientEventsFd() const { return events_; }

    // Whether there was a client at the last Read.
    bool hasClient() const { return hasClient_; }

    // Bytes a client has sent; empty when there are none.
    std::string Read();

    // Queues text for the client; with none listening it is lost, as on a real line.
    void Send(std::string_view text);
    // Passes on as much of the queue as the client takes now.
    void Flush();
    void DropQueue() { queue_.clear(); }
    bool hasQueue() const { return !queue_.empty(); }
    // More is queued than a program should be allowed to get ahead.
    bool isFull() const;

  private:
    SerialPort() = default;
    bool OpenTerminal();
    void LookForClient();
    void WatchForClients();
    bool Link(const std::string& link);

    int master_ = -1;
    int events_ = -1;
    bool hasClient_ = false;
    std::string device_;
    std::string link_;
    std::string queue_;
};

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

    // To poll: the line itself, and the coming and going of clients.
    int fd() const { return master_; }
    int clientEventsFd() const { return events_; }

    // Takes note of clients that came or went. Call before Read, so that what a client that has
    // just come sends is answered.
    void UpdateClients();

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
    void WatchClients();
    bool Link(const std::string& link);

    int master_ = -1;
    int keeper_ = -1;  // Our own hold on the client's end: without it the first close hangs up.
    int events_ = -1;
    int clients_ = 0;
    bool tracksClients_ = false;
    std::string device_;
    std::string link_;
    std::string queue_;
};

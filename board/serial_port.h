#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <utility>

// The board's end of its serial line: a pseudo-terminal. A client opens the other end, the serial
// device ("/dev/pts/N" on Linux), as it opens a board on USB. Owned by the board and used on its
// thread.
class SerialPort {
  public:
    // If `link` is not empty, creates a symbolic link to the serial device with this path; it is
    // removed on destruction. The error is a sentence.
    static std::expected<SerialPort, std::string> Open(const std::string& link);
    SerialPort(SerialPort&& other) noexcept;
    SerialPort& operator=(SerialPort&&) = delete;
    ~SerialPort();

    // Does not remove the link on destruction.
    void LeaveLink() { link_.clear(); }
    const std::string& devicePath() const { return device_; }

    // To be polled only while there is a client; without one, the line is hung up.
    int fd() const { return master_; }
    // Readable when a client may have connected; -1 if the system does not report that.
    int clientEventsFd() const { return events_; }

    // Whether there was a client at the last Read.
    bool hasClient() const { return hasClient_; }

    // Returns the bytes that a client has sent and that are available now. Until they are read, the
    // client cannot send many more.
    std::string Read();
    // Checks for a client, as Read does.
    void CheckForClient();
    // Whether a client has opened the line, or has discarded unsent bytes, since the last call. The
    // descriptor has the event POLLPRI for it, and Read notices it before the bytes that follow.
    bool TakeFlushed() { return std::exchange(isFlushed_, false); }

    // Queues text for the client. Without a client it is lost, as on a real line.
    void Send(std::string_view text);
    // Writes as much of the queue as possible without blocking.
    void Flush();
    void DropQueue() { queue_.clear(); }
    bool hasQueue() const { return !queue_.empty(); }
    // Whether the queue is so long that no more of the program's output should be read.
    bool isFull() const;

  private:
    SerialPort() = default;
    bool OpenTerminal();
    void WatchForClients();
    bool Link(const std::string& link);

    int master_ = -1;
    int events_ = -1;
    bool hasClient_ = false;
    bool isFlushed_ = false;
    std::string device_;
    std::string link_;
    std::string queue_;
};

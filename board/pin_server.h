#pragma once

#include "pin_messages.h"

#include <poll.h>

#include <chrono>
#include <expected>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Serves the state of the pins on a local socket, which the user alone can access. Each client
// receives the whole state, and then what has changed, at most 60 times a second. A client that
// does not read is not waited for: it receives the newest state later. Owned by the board and used
// on its thread; nothing blocks.
class PinServer {
  public:
    using Clock = std::chrono::steady_clock;

    // Replaces a socket that nobody serves any more. The error is a sentence.
    static std::expected<PinServer, std::string> Listen(const std::string& path);
    PinServer(PinServer&& other) noexcept;
    PinServer& operator=(PinServer&&) = delete;
    ~PinServer();

    // Appends the descriptors to poll.
    void AddTo(std::vector<pollfd>& fds) const;
    // Serves the clients after a poll of the descriptors that AddTo appended. `mayChange` says
    // whether a program could have changed a pin. Returns whether a client has changed one.
    bool Serve(std::span<const pollfd> fds, PinBlock& block, bool mayChange);
    // When Serve must be called at the latest; nullopt if only for an event.
    std::optional<Clock::time_point> nextUpdate(bool mayChange) const;

  private:
    struct Client {
        int fd;
        std::string received;
        std::string queue;
        bool skipsLine = false;  // It is too long; the rest of it is ignored.
        bool isBehind = false;   // It did not receive the last update.
        unsigned resets = 0;
        PinLines sent{};
    };

    PinServer() = default;
    void Accept(const PinBlock& block);
    static bool Receive(Client& client, PinBlock& block);
    static bool Perform(Client& client, std::string_view line, PinBlock& block);
    static void Answer(Client& client, std::string_view error);
    void Update(const PinBlock& block);
    static void UpdateClient(Client& client, const PinLines& lines, unsigned resets);
    void Flush(Client& client);

    int listener_ = -1;
    std::string path_;
    std::list<Client> clients_;
    PinDescriptions descriptions_;
    bool isOutdated_ = false;  // A pin could have changed since the last update.
    Clock::time_point lastUpdate_;
};

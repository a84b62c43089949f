#include "standard_output.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

// Waits until standard output is ready. Returns false if the text is to be discarded.
bool StandardOutput::IsReady() const
{
    std::array<pollfd, 2> fds{{{STDOUT_FILENO, POLLOUT, 0}, {interruptFd_, POLLIN, 0}}};
    while (poll(fds.data(), fds.size(), -1) < 0 && errno == EINTR) {
    }
    return fds[0].revents != 0;
}

bool StandardOutput::Write(std::string_view text)
{
    while (!text.empty() && IsReady()) {
        // A pipe that is ready accepts this many bytes without blocking.
        const ssize_t n =
            write(STDOUT_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (n >= 0) {
            text.remove_prefix(static_cast<std::size_t>(n));
        } else if (errno != EINTR && errno != EAGAIN) {
            if (errno != EPIPE) {
                error_ = std::string("cannot write to standard output: ") + std::strerror(errno);
            }
            return false;
        }
    }
    return true;
}

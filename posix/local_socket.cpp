#include "local_socket.h"

#include "descriptors.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

#ifndef MSG_NOSIGNAL
#define MSG_NOSIGNAL 0  // Other systems have an option of the socket instead.
#endif

bool CanBeSocketPath(const std::string& path)
{
    return path.size() < sizeof(sockaddr_un::sun_path);
}

int ConnectToLocalSocket(const std::string& path)
{
    if (!CanBeSocketPath(path)) {
        return -1;
    }
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    if (fd < 0) {
        return -1;
    }
    fcntl(fd, F_SETFD, FD_CLOEXEC);
    SetNonBlocking(fd);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

bool SendToSocket(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t sent = send(fd, data.data(), data.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) {
            return false;
        }
        data.remove_prefix(sent > 0 ? static_cast<std::size_t>(sent) : 0);
    }
    return true;
}

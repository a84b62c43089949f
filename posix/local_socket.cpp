#include "local_socket.h"

#include "descriptors.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

#ifndef MSG_NOSIGNAL
#define MSG_NOSIGNAL 0  // Other systems have an option of the socket instead.
#endif

namespace {

int Configured(int fd)
{
    if (fd >= 0) {
        fcntl(fd, F_SETFD, FD_CLOEXEC);
        SetNonBlocking(fd);
    }
    return fd;
}

using Attach = int (*)(int fd, const sockaddr* address, socklen_t size);

// Makes a socket and connects or binds it. On failure returns -1 and sets errno.
int MakeSocket(const std::string& path, Attach attach)
{
    if (!CanBeSocketPath(path)) {
        errno = ENAMETOOLONG;
        return -1;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    const int fd = Configured(socket(AF_UNIX, SOCK_STREAM, 0));
    if (fd < 0 || attach(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        return fd;
    }
    const int error = errno;
    close(fd);
    errno = error;
    return -1;
}

int BindForUserOnly(int fd, const sockaddr* address, socklen_t size)
{
    const mode_t before = umask(0177);
    const int result = bind(fd, address, size);
    umask(before);
    return result;
}

// A socket that refuses connections has been left behind.
void RemoveStale(const std::string& path)
{
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) {
        return;
    }
    const int probe = ConnectToLocalSocket(path);
    if (probe < 0 && errno == ECONNREFUSED) {
        unlink(path.c_str());
    }
    CloseDescriptor(probe);
}

}  // namespace

bool CanBeSocketPath(const std::string& path)
{
    return path.size() < sizeof(sockaddr_un::sun_path);
}

int ConnectToLocalSocket(const std::string& path)
{
    return MakeSocket(path, connect);
}

int ListenOnLocalSocket(const std::string& path, int maxPending)
{
    RemoveStale(path);
    const int fd = MakeSocket(path, BindForUserOnly);
    if (fd < 0 || listen(fd, maxPending) == 0) {
        return fd;
    }
    const int error = errno;
    unlink(path.c_str());
    close(fd);
    errno = error;
    return -1;
}

int AcceptConnection(int listener)
{
    return Configured(accept(listener, nullptr, nullptr));
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

#include "descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#ifdef __linux__
#include <sys/mman.h>
#include <sys/prctl.h>
#endif

bool MakePipe(std::array<int, 2>& ends)
{
#ifdef __linux__
    return pipe2(ends.data(), O_CLOEXEC) == 0;
#else
    if (pipe(ends.data()) != 0) {
        return false;
    }
    for (const int fd : ends) {
        fcntl(fd, F_SETFD, FD_CLOEXEC);
    }
    return true;
#endif
}

void SetNonBlocking(int fd)
{
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
}

void CloseDescriptor(int fd)
{
    if (fd >= 0) {
        close(fd);
    }
}

void SetPipeCapacity([[maybe_unused]] int fd, [[maybe_unused]] int bytes)
{
#ifdef F_SETPIPE_SZ
    fcntl(fd, F_SETPIPE_SZ, bytes);
#endif
}

int MakeSharedMemory(std::size_t size)
{
#ifdef __linux__
    const int fd = memfd_create("shared", MFD_CLOEXEC);
#else
    std::string name = "/tmp/shared.XXXXXX";
    const int fd = mkstemp(name.data());
    if (fd >= 0) {
        unlink(name.c_str());
        fcntl(fd, F_SETFD, FD_CLOEXEC);
    }
#endif
    if (fd >= 0 && ftruncate(fd, static_cast<off_t>(size)) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

void SignalOnParentExit(pid_t parent, int signal)
{
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, signal);
#endif
    if (getppid() != parent) {
        raise(signal);  // The parent exited before prctl was called.
    }
}

std::string ReadAvailable(int fd)
{
    pollfd ready{fd, POLLIN, 0};
    if (poll(&ready, 1, 0) <= 0 || (ready.revents & POLLIN) == 0) {
        return {};
    }
    // Not initialised on each call: bytes may arrive one by one, and clearing the buffer for each
    // would cost more than reading.
    thread_local std::array<char, 65536> buffer;
    const ssize_t n = read(fd, buffer.data(), buffer.size());
    return {buffer.data(), n > 0 ? static_cast<std::size_t>(n) : 0};
}

bool WriteFully(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t n = write(fd, data.data(), data.size());
        if (n >= 0) {
            data.remove_prefix(static_cast<std::size_t>(n));
        } else if (errno == EAGAIN) {
            pollfd writable{fd, POLLOUT, 0};
            poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

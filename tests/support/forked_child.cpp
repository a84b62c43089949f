#include "forked_child.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

ForkedChild::ForkedChild(const std::function<int()>& work) : pid_(fork())
{
    if (pid_ == 0) {
        const int status = work();
        std::fflush(stdout);
        _exit(status);
    }
}

int ForkedChild::Wait()
{
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ForkedChild::Kill()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        Wait();
    }
}

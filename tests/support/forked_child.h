#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <utility>

// A copy of the test's process that does some work and exits with the status it returns. Killed
// with this object.
class ForkedChild {
  public:
    explicit ForkedChild(const std::function<int()>& work) : pid_(fork())
    {
        if (pid_ == 0) {
            const int status = work();
            std::fflush(stdout);
            _exit(status);
        }
    }
    ForkedChild(const ForkedChild&) = delete;
    ForkedChild& operator=(const ForkedChild&) = delete;
    ~ForkedChild() { Kill(); }

    // Returns the exit status; -1 if a signal terminated it.
    int Wait()
    {
        int status = 0;
        waitpid(std::exchange(pid_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void Kill()
    {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            Wait();
        }
    }

  private:
    pid_t pid_;
};

#include "process_setup.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <initializer_list>
#include <tuple>

void PrepareProcess()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) {
            // Gets the lowest free number, which is this one.
            std::ignore = open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
    signal(SIGCHLD, SIG_DFL);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
}

void HandleUnlessIgnored(int number, void (*handler)(int))
{
    struct sigaction action {};
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) {
        return;
    }
    action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    // Otherwise the handler of a second signal would run first and reverse their order.
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

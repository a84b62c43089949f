#include "leaks.h"

#include "wait.h"

#include <signal.h>
#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <string>

namespace {

std::size_t CountEntries(const char* folder)
{
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace

Holdings CurrentHoldings()
{
    siginfo_t info{};
    const bool none = waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
    return {CountEntries("/proc/self/fd"), CountEntries("/proc/self/task"), !none};
}

Holdings SettledHoldings(const Holdings& expected)
{
    WaitUntil([&] { return CurrentHoldings() == expected; }, std::chrono::seconds(5));
    return CurrentHoldings();
}

void PrintTo(const Holdings& holdings, std::ostream* out)
{
    *out << holdings.descriptors << " descriptors, " << holdings.threads << " threads, "
         << (holdings.children ? "children" : "no children");
}

bool IsAlive(pid_t process)
{
    const auto state = ReadFile("/proc/" + std::to_string(process) + "/stat");
    return kill(process, 0) == 0 && state.find(") Z ") == std::string::npos;
}

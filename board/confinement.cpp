#include "confinement.h"

#include "descriptors.h"

#include <sys/resource.h>

#include <signal.h>
#include <array>
#include <cerrno>

#ifdef __linux__

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <memory>

namespace {

// Rights and fields that the installed header may be too old for.
constexpr std::uint64_t kTruncate = 1ULL << 14;
constexpr std::uint64_t kUseDevice = 1ULL << 15;
constexpr std::uint64_t kTcpBindAndConnect = 3;
constexpr std::uint64_t kAbstractSocketsAndSignals = 3;
struct RulesetAttributes {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scoped = 0;
};

constexpr std::uint64_t kRead = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr std::uint64_t kWrite = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                 LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_DIR |
                                 LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_REFER | kTruncate;

// What this version of Landlock can forbid.
RulesetAttributes AllRights(long version)
{
    RulesetAttributes all;
    all.files = LANDLOCK_ACCESS_FS_REFER - 1;  // All rights of the first version.
    all.files |= version >= 2 ? std::uint64_t{LANDLOCK_ACCESS_FS_REFER} : 0;
    all.files |= version >= 3 ? kTruncate : 0;
    all.files |= version >= 5 ? kUseDevice : 0;
    all.network = version >= 4 ? kTcpBindAndConnect : 0;
    all.scoped = version >= 6 ? kAbstractSocketsAndSignals : 0;
    return all;
}

void Allow(int rules, const std::string& folder, std::uint64_t rights)
{
    const int fd = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const landlock_path_beneath_attr rule{rights, fd};
    if (fd >= 0) {  // Otherwise the folder has been removed.
        syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    }
    CloseDescriptor(fd);
}

constexpr std::array kAllowedCalls{
    // Files that the Landlock rules allow, and descriptors.
    SCMP_SYS(open), SCMP_SYS(openat), SCMP_SYS(close), SCMP_SYS(read), SCMP_SYS(write),
    SCMP_SYS(readv), SCMP_SYS(writev), SCMP_SYS(pread64), SCMP_SYS(pwrite64), SCMP_SYS(lseek),
    SCMP_SYS(_llseek), SCMP_SYS(stat), SCMP_SYS(lstat), SCMP_SYS(fstat), SCMP_SYS(newfstatat),
    SCMP_SYS(fstatat64), SCMP_SYS(statx), SCMP_SYS(getdents), SCMP_SYS(getdents64),
    SCMP_SYS(getcwd), SCMP_SYS(mkdir), SCMP_SYS(mkdirat), SCMP_SYS(rmdir), SCMP_SYS(unlink),
    SCMP_SYS(unlinkat), SCMP_SYS(rename), SCMP_SYS(renameat), SCMP_SYS(renameat2), SCMP_SYS(fsync),
    SCMP_SYS(poll), SCMP_SYS(ppoll), SCMP_SYS(select), SCMP_SYS(pselect6), SCMP_SYS(dup),
    // Memory and threads.
    SCMP_SYS(brk), SCMP_SYS(mmap), SCMP_SYS(mmap2), SCMP_SYS(munmap), SCMP_SYS(mremap),
    SCMP_SYS(mprotect), SCMP_SYS(madvise), SCMP_SYS(futex), SCMP_SYS(futex_time64),
    SCMP_SYS(set_robust_list), SCMP_SYS(rseq), SCMP_SYS(sched_yield), SCMP_SYS(sched_getaffinity),
    SCMP_SYS(gettid), SCMP_SYS(getpid), SCMP_SYS(exit), SCMP_SYS(exit_group),
    // Signals of its own.
    SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(sigreturn),
    SCMP_SYS(sigaltstack), SCMP_SYS(restart_syscall), SCMP_SYS(setitimer),
    // Time and random numbers.
    SCMP_SYS(clock_gettime), SCMP_SYS(clock_gettime64), SCMP_SYS(clock_getres),
    SCMP_SYS(clock_nanosleep), SCMP_SYS(nanosleep), SCMP_SYS(gettimeofday), SCMP_SYS(time),
    SCMP_SYS(getrandom), SCMP_SYS(uname)};

// A thread, but no process, and none that begins with other namespaces.
constexpr scmp_datum_t kCloneMask = CLONE_THREAD | CLONE_NEWNS | CLONE_NEWUSER | CLONE_NEWPID |
                                    CLONE_NEWNET | CLONE_NEWIPC | CLONE_NEWUTS | CLONE_NEWCGROUP;

bool AddRules(scmp_filter_ctx filter, pid_t pid)
{
    int failures = 0;
    for (const int call : kAllowedCalls) {
        failures += seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) != 0 ? 1 : 0;
    }
    const auto self = static_cast<scmp_datum_t>(pid);
    // The C library uses the older call in place of clone3, whose flags a filter cannot read.
    failures += seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0);
    failures += seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(clone), 1,
                                 SCMP_A0_64(SCMP_CMP_MASKED_EQ, kCloneMask, CLONE_THREAD));
    failures += seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(tgkill), 1,
                                 SCMP_A0_32(SCMP_CMP_EQ, self));
    // Limits may be read, as at the start of a thread.
    failures += seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(prlimit64), 2,
                                 SCMP_A0_32(SCMP_CMP_EQ, 0), SCMP_A2_64(SCMP_CMP_EQ, 0));
    for (const int command : {F_DUPFD, F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL, F_SETFL}) {
        failures += seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(fcntl), 1,
                                     SCMP_A1_32(SCMP_CMP_EQ, static_cast<scmp_datum_t>(command)));
    }
    return failures == 0;
}

}  // namespace

int MakeFileRules(const std::string& folder, const std::string& modules)
{
    const long version =
        syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        return -1;
    }
    const RulesetAttributes all = AllRights(version);
    const auto rules = static_cast<int>(syscall(SYS_landlock_create_ruleset, &all, sizeof all, 0));
    if (rules >= 0) {
        Allow(rules, folder, (kRead | kWrite) & all.files);
        Allow(rules, modules, kRead);
    }
    return rules;
}

std::string MakeSystemCallFilter(pid_t pid)
{
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(
        seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release);
    std::array<int, 2> pipe{-1, -1};
    std::string program;
    // The program fits into a pipe: it is at most 32 KiB.
    if (filter && AddRules(filter.get(), pid) && MakePipe(pipe) &&
        seccomp_export_bpf(filter.get(), pipe[1]) == 0) {
        program = ReadAvailable(pipe[0]);
    }
    CloseDescriptor(pipe[0]);
    CloseDescriptor(pipe[1]);
    return program;
}

#else

int MakeFileRules(const std::string&, const std::string&)
{
    return -1;
}

std::string MakeSystemCallFilter(pid_t)
{
    return {};
}

#endif

void LimitResources(std::size_t memory, std::size_t file)
{
    const auto limit = [](auto resource, std::size_t value) {
        const rlimit both{value, value};
        setrlimit(resource, &both);
    };
    limit(RLIMIT_AS, memory);
    limit(RLIMIT_FSIZE, file);
    limit(RLIMIT_NOFILE, 32);
    limit(RLIMIT_CORE, 0);
    signal(SIGXFSZ, SIG_IGN);  // Writing fails instead.
}

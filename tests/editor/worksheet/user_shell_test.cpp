#include "user_shell.h"

#include "leaks.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

#include <signal.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

class UserShellTest : public testing::Test {
  protected:
    UserShellTest()
    {
        qputenv("SHELL", "/bin/sh");
        QObject::connect(&*shell, &UserShell::Output,
                         [this](const std::string& bytes) { output += bytes; });
        QObject::connect(&*shell, &UserShell::Finished,
                         [this](int status) { statuses.push_back(status); });
    }
    ~UserShellTest() override { qputenv("SHELL", shellBefore); }

    void Start(const std::string& command)
    {
        output.clear();
        shell->Run(QString::fromStdString(command), QString::fromStdString(folder.path()));
    }
    bool WaitForEnd(std::size_t count)
    {
        return WaitUntil([&] { return statuses.size() == count; });
    }
    void ExpectRun(const std::string& command, const std::string& printed, int status)
    {
        statuses.clear();
        Start(command);
        EXPECT_TRUE(WaitForEnd(1));
        EXPECT_EQ(output, printed);
        EXPECT_EQ(statuses, std::vector{status});
    }
    // Starts a command that prints a process number.
    pid_t StartAndReadNumber(const std::string& command)
    {
        Start(command);
        EXPECT_TRUE(WaitUntil([&] { return output.ends_with('\n'); })) << output;
        return static_cast<pid_t>(std::stol(output));
    }

    const QByteArray shellBefore = qgetenv("SHELL");
    const TemporaryFolder folder;
    Runtime runtime;
    std::optional<UserShell> shell{std::in_place};
    std::string output;
    std::vector<int> statuses;
};

}  // namespace

TEST_F(UserShellTest, RunsACommandOfTheUsersShellInTheFolder)
{
    ExpectRun("pwd -P; cat; echo 'ä' >&2; exit 3",
              std::filesystem::canonical(folder.path()).string() + "\nä\n", 3);
    const auto own = folder.Write("own shell", "#!/bin/sh\necho \"own $1 $2\"\n");
    std::filesystem::permissions(own, std::filesystem::perms::owner_all);
    qputenv("SHELL", own.c_str());
    ExpectRun("a b", "own -c a b\n", 0);
    qputenv("SHELL", "/no/such/shell");
    ExpectRun("echo", "/no/such/shell: No such file or directory\n", 127);
    std::filesystem::remove_all(folder.path());
    Start("echo");
    ASSERT_TRUE(WaitForEnd(2));
    EXPECT_EQ(output, "The folder " + folder.path() + " does not exist.\n");
}

TEST_F(UserShellTest, AllOutputArrivesBeforeTheCommandFinishes)
{
    Start("i=0; while [ $i -lt 20000 ]; do echo 1234567890; i=$((i+1)); done");
    ASSERT_TRUE(WaitForEnd(1));
    EXPECT_EQ(output.size(), 20000U * 11);
}

TEST_F(UserShellTest, StopTerminatesTheWholeProcessGroup)
{
    const pid_t stubborn =
        StartAndReadNumber("sh -c 'trap \"\" TERM; echo $$; while :; do sleep 1; done' & wait");
    shell->Stop();
    ASSERT_TRUE(WaitForEnd(1));
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(stubborn); }));
    StartAndReadNumber("trap '' TERM; echo $$; while :; do sleep 1; done");
    shell->Stop();
    shell->Stop();
    ASSERT_TRUE(WaitForEnd(2));
    EXPECT_EQ(statuses, (std::vector{128 + SIGTERM, 128 + SIGKILL}));
}

TEST_F(UserShellTest, ANewCommandWaitsUntilTheOldOneFinished)
{
    StartAndReadNumber(
        "trap 'echo old' EXIT; trap 'exit 9' TERM; echo $$; "
        "while :; do sleep 0.01; done");
    Start("echo never");
    Start("echo new");
    ASSERT_TRUE(WaitForEnd(2));
    EXPECT_TRUE(output.ends_with("old\nnew\n")) << output;  // A shell may report more.
    EXPECT_EQ(output.find("never"), std::string::npos);
    EXPECT_EQ(statuses, (std::vector{9, 0}));
    Start("echo withdrawn");
    shell->Stop();
}

TEST_F(UserShellTest, NoProcessOrFileDescriptorIsLeaked)
{
    const auto before = CurrentHoldings();
    ExpectRun("exec >&- 2>&-; sleep 0.02", "", 0);
    const pid_t sleeper = StartAndReadNumber("sleep 1000 & echo $!; wait");
    shell.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(sleeper); }));
    EXPECT_EQ(SettledHoldings(before), before);
}

TEST_F(UserShellTest, ContinuousOutputDoesNotBlockTheEventLoop)
{
    int turns = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { ++turns; });
    other.start(0);
    std::size_t bytes = 0;
    QObject::connect(&*shell, &UserShell::Output, [&](const std::string& piece) {
        output.clear();
        bytes += piece.size();
        EXPECT_LE(piece.size(), UserShell::kMaxOutput);
    });
    Start("yes");
    ASSERT_TRUE(WaitUntil([&] { return bytes > 20 * UserShell::kMaxOutput; }));
    EXPECT_GT(turns, 10);
    // Pieces do not queue up: little follows a stop.
    shell->Stop();
    const std::size_t bytesAtStop = bytes;
    ASSERT_TRUE(WaitForEnd(1));
    EXPECT_LE(bytes - bytesAtStop, 4 * UserShell::kMaxOutput);
}

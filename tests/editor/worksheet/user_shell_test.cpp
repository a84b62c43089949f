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

    void Run(const std::string& command)
    {
        shell->Run(QString::fromStdString(command), QString::fromStdString(folder.path()));
    }
    bool WaitForEnd(std::size_t count = 1)
    {
        return WaitUntil([&] { return statuses.size() == count; });
    }
    pid_t WaitForNumber()
    {
        EXPECT_TRUE(WaitUntil([&] { return output.ends_with('\n'); })) << output;
        return static_cast<pid_t>(std::stol(output));
    }
    // Who takes an orphan's status may take a while.
    static bool IsAlive(pid_t pid)
    {
        return kill(pid, 0) == 0 &&
               ReadFile("/proc/" + std::to_string(pid) + "/stat").find(") Z ") == std::string::npos;
    }

    const QByteArray shellBefore = qgetenv("SHELL");
    const TemporaryFolder folder;
    Runtime runtime;
    std::optional<UserShell> shell{std::in_place};
    std::string output;
    std::vector<int> statuses;
};

}  // namespace

TEST_F(UserShellTest, RunsALineOfTheShellInTheFolder)
{
    Run("pwd -P; cat; echo 'ä' >&2; exit 3");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(output, std::filesystem::canonical(folder.path()).string() + "\nä\n");
    EXPECT_EQ(statuses[0], 3);
}

TEST_F(UserShellTest, UsesTheUsersOwnShell)
{
    const auto own = folder.Write("own shell", "#!/bin/sh\necho \"own $1 $2\"\n");
    std::filesystem::permissions(own, std::filesystem::perms::owner_all);
    qputenv("SHELL", own.c_str());
    Run("a b");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(output, "own -c a b\n");
}

TEST_F(UserShellTest, SaysWhatCannotBeRun)
{
    shell->Run("echo no", "/no/such folder");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(output, "There is no folder /no/such folder.\n");
    EXPECT_EQ(statuses[0], 127);
    output.clear();
    qputenv("SHELL", "/no/such/shell");
    Run("echo no");
    ASSERT_TRUE(WaitForEnd(2));
    EXPECT_EQ(output, "/no/such/shell: No such file or directory\n");
    EXPECT_EQ(statuses[1], 127);
}

TEST_F(UserShellTest, AllOfTheOutputComesBeforeTheEnd)
{
    Run("i=0; while [ $i -lt 20000 ]; do echo 1234567890; i=$((i+1)); done");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(output.size(), 20000U * 11);
}

TEST_F(UserShellTest, StopEndsTheWholeGroup)
{
    Run("sh -c 'trap \"\" TERM; echo $$; while :; do sleep 1; done' & wait");
    const pid_t stubborn = WaitForNumber();
    shell->Stop();
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(statuses[0], 128 + SIGTERM);
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(stubborn); }));
    output.clear();
    Run("trap '' TERM; echo $$; while :; do sleep 1; done");
    WaitForNumber();
    shell->Stop();
    shell->Stop();
    ASSERT_TRUE(WaitForEnd(2));
    EXPECT_EQ(statuses[1], 128 + SIGKILL);
}

TEST_F(UserShellTest, ANewCommandWaitsForTheEndOfTheOld)
{
    Run("trap 'echo old' EXIT; trap 'exit 9' TERM; echo $$; while :; do sleep 0.01; done");
    WaitForNumber();
    output.clear();
    Run("echo never");
    Run("echo new");
    ASSERT_TRUE(WaitForEnd(2));
    EXPECT_TRUE(output.ends_with("old\nnew\n")) << output;
    EXPECT_EQ(output.find("never"), std::string::npos);
    EXPECT_EQ(statuses, (std::vector{9, 0}));
}

TEST_F(UserShellTest, NothingIsLeftBehind)
{
    const auto before = CurrentHoldings();
    Run("exec >&- 2>&-; sleep 0.02");
    ASSERT_TRUE(WaitForEnd());
    Run("sleep 1000 & echo $!; wait");
    const pid_t sleeper = WaitForNumber();
    shell.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(sleeper); }));
    EXPECT_EQ(SettledHoldings(before), before);
}

TEST_F(UserShellTest, AFloodLeavesTheWindowItsTurns)
{
    int turns = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { ++turns; });
    other.start(0);
    std::size_t bytes = 0;
    QObject::connect(&*shell, &UserShell::Output, [&](const std::string& piece) {
        output.clear();
        bytes += piece.size();
        EXPECT_LE(piece.size(), 65536U);
    });
    Run("yes");
    ASSERT_TRUE(WaitUntil([&] { return bytes > 20'000'000; }));
    EXPECT_GT(turns, 100);
    shell->Stop();
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(statuses[0], 128 + SIGTERM);
}

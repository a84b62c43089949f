#include "SimpleShell.h"

#include "forked_child.h"
#include "leaks.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <sys/ptrace.h>

#include <atomic>
#include <filesystem>
#include <numeric>
#include <stdexcept>
#include <thread>

namespace {

using Pieces = std::vector<std::string>;

std::string Sh(const std::string& script)
{
    return "sh -c '" + script + "'";
}

// Prints its process ID.
const std::string kIgnoresTermination = Sh("trap \"\" TERM; echo $$; exec sleep 1000");

class SimpleShellTest : public testing::Test {
  protected:
    // Its output arrives in `pieces_` through the queue, as in a host.
    std::shared_ptr<SimpleShell> MakeShell()
    {
        return std::make_shared<SimpleShell>(
            [this](std::string&& text) {
                ++forwarded_;
                runtime_.queue().Post(
                    [this, piece = std::move(text)] { pieces_.push_back(piece); });
            },
            "Test");
    }

    // Runs a command. Its completion must be called once, after the last piece.
    Pieces Run(const std::string& line)
    {
        const auto shell = MakeShell();
        int completions = 0;
        Pieces before;
        shell->Run(line, [&] {
            ++completions;
            before = pieces_;
        });
        EXPECT_TRUE(WaitForIdle());
        EXPECT_EQ(completions, 1);
        EXPECT_EQ(before, pieces_);
        return std::exchange(pieces_, {});
    }

    // Starts a command and waits for its first piece.
    std::shared_ptr<SimpleShell> Start(const std::string& line)
    {
        const auto shell = MakeShell();
        shell->Run(line, {});
        EXPECT_TRUE(WaitUntil([&] { return !pieces_.empty(); })) << line;
        return shell;
    }

    bool WaitForIdle()
    {
        return WaitUntil([this] { return runtime_.IsIdle(); });
    }

    Runtime runtime_;
    Pieces pieces_;
    std::atomic<int> forwarded_ = 0;
};

}  // namespace

TEST_F(SimpleShellTest, ForwardsOneLinePerPiece)
{
    setenv("PYTHONUNBUFFERED", "", 1);
    const struct {
        const char* name;
        std::string line;
        Pieces output;
    } rows[] = {
        {"errors in order",
         Sh("echo one; echo two >&2; echo three; printf four >&2"),
         {"one\n", "two\n", "three\n", "four"}},
        {"environment", "printenv PYTHONUNBUFFERED PYTHONUTF8\n", {"1\n", "1\n"}},
        {"a crash", Sh("printf \"about to crash\"; kill -ABRT $$"), {"about to crash"}},
        {"no such tool", "/no/such/tool ls\n", {"/no/such/tool: No such file or directory\n"}},
        {"unbalanced quotes",
         "tool rm -r :'it's'\n",
         {"Invalid command line: its quotes are not balanced\n"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Run(row.line), row.output) << row.name;
    }
}

TEST_F(SimpleShellTest, ForwardsAnUnterminatedLineButNotPartOfACharacter)
{
    const TemporaryFolder folder;
    const auto shell = Start(Sh("printf \"euro \\342\\202\"; until test -e " + (folder / "go") +
                                "; do sleep 0.01; done; printf \"\\254 sign\\n\""));
    EXPECT_EQ(pieces_, Pieces{"euro "});
    folder.Write("go", "");
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(pieces_, (Pieces{"euro ", "€ sign\n"}));
}

TEST_F(SimpleShellTest, SendsInputOfAnyLengthToTheRunningProgramOnly)
{
    EXPECT_FALSE(runtime_.SendInput(JobGroup::Board, "lost"));
    const auto shell = Start(Sh("echo ready; head -c 1000001 | wc -c"));
    EXPECT_FALSE(runtime_.SendInput(JobGroup::UserShell, "lost"));
    for (std::size_t sent = 0; sent < 1'000'000;) {
        sent += runtime_.SendInput(JobGroup::Board, std::string(1000, 'x')) ? 1000 : 0;
    }
    EXPECT_TRUE(WaitUntil([&] { return runtime_.SendInput(JobGroup::Board, "x"); }));
    EXPECT_TRUE(WaitForIdle());
    EXPECT_EQ(pieces_, (Pieces{"ready\n", "1000001\n"}));
}

TEST_F(SimpleShellTest, DoesNotWaitForAGrandchildThatHoldsThePipe)
{
    const auto pieces = Run(Sh("trap \"\" TERM; sleep 1000 & echo $!"));
    ASSERT_EQ(pieces.size(), 1u);
    EXPECT_EQ(kill(std::stoi(pieces[0]), SIGKILL), 0);
}

TEST_F(SimpleShellTest, ForwardsALargeOutputInOrder)
{
    const TemporaryFolder folder;
    std::string text;
    for (int i = 0; i < 100'000; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    const auto pieces = Run("cat " + folder.Write("text", text));
    EXPECT_TRUE(std::accumulate(pieces.begin(), pieces.end(), std::string()) == text);
}

TEST_F(SimpleShellTest, StopDropsACompletionThatWasAlreadyPosted)
{
    const auto threads = CurrentHoldings().threads;
    const auto shell = MakeShell();
    bool done = false;
    shell->Run("true", [&] { done = true; });
    while (CurrentHoldings().threads > threads) {
        std::this_thread::yield();  // No event is processed.
    }
    shell->Stop();
    EXPECT_TRUE(WaitForIdle());
    EXPECT_FALSE(done);
}

TEST_F(SimpleShellTest, AFullQueueBlocksTheReaderUntilStop)
{
    const Holdings before = CurrentHoldings();
    const auto shell = MakeShell();
    bool done = false;
    shell->Run("yes", [&] { done = true; });
    while (forwarded_ < 500) {
        std::this_thread::yield();
    }
    poll(nullptr, 0, 100);  // Enough for ten thousand more.
    EXPECT_LT(forwarded_, 600);
    shell->Stop();
    while (CurrentHoldings().children) {
        std::this_thread::yield();  // No event is processed.
    }
    EXPECT_TRUE(WaitForIdle());
    EXPECT_FALSE(done);
    EXPECT_EQ(SettledHoldings(before), before);
}

TEST_F(SimpleShellTest, StopTerminatesFirstAndKillsTheWholeGroup)
{
    const TemporaryFolder folder;
    const auto polite = Start(Sh("trap \"echo >" + (folder / "terminated") +
                                 "; exit\" TERM; echo ready; sleep 1000 & wait"));
    polite->Stop();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_TRUE(std::filesystem::exists(folder / "terminated"));

    pieces_.clear();
    // The grandchild does not hold the pipe.
    const auto stubborn =
        Start(Sh("trap \"\" TERM; sleep 1000 >&- 2>&- & echo $!; trap - TERM; wait"));
    const pid_t grandchild = std::stoi(pieces_.at(0));
    stubborn->Stop();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(grandchild); }));
}

TEST_F(SimpleShellTest, StopDoesNotWaitButTheNextCommandDoes)
{
    const auto first = Start(kIgnoresTermination);
    const pid_t process = std::stoi(pieces_.at(0));
    pieces_.clear();
    first->Stop();
    EXPECT_TRUE(IsAlive(process));
    const auto second = Start("echo next");
    EXPECT_EQ(pieces_, Pieces{"next\n"});
    EXPECT_FALSE(IsAlive(process));
}

TEST_F(SimpleShellTest, ReportsEachCommandAndWhatItsOutputCallbackThrows)
{
    Pieces events;
    runtime_.handlers.commandStarted = [&](const auto& words) {
        events.push_back("start " + words.back());
    };
    runtime_.handlers.commandEnded = [&](const auto& words, Runtime::CommandEnd end) {
        events.push_back(words.back() + (end.isStopped ? " stopped" : std::to_string(end.status)));
    };
    runtime_.handlers.error = [&](const std::string& error) { events.push_back(error); };
    Run("false 1");
    const auto overtaken = Start("tail -f /dev/null -n +0 /proc/self/stat");
    overtaken->Run("echo 2", [&] { events.push_back("done"); });
    ASSERT_TRUE(WaitForIdle());
    const auto thrower = std::make_shared<SimpleShell>(
        [](std::string&&) { throw std::runtime_error("thrown"); }, "Test");
    thrower->Run("echo 3", {});
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(events, (Pieces{"start 1", "11", "start /proc/self/stat", "/proc/self/stat stopped",
                              "start 2", "20", "done", "start 3", "thrown", "30"}));
}

TEST(SimpleShell, AProgramThatCannotBeKilledBlocksNeitherTheNextCommandNorTheEnd)
{
    // A tracer that stops the program when it exits, as a disk that does not answer does.
    const auto hold = [](pid_t process) {
        ptrace(PTRACE_SEIZE, process, nullptr, PTRACE_O_TRACEEXIT);
        return poll(nullptr, 0, -1);
    };
    const Holdings before = CurrentHoldings();
    std::string text;
    std::string warning;
    Runtime runtime;
    runtime.handlers.warning = [&](const std::string& sentence) { warning = sentence; };
    SimpleShell shell(
        [&](std::string&& line) { runtime.queue().Post([&text, line] { text += line; }); }, "Test");
    shell.Run(Sh("echo $$; exec sleep 1000"), {});
    ASSERT_TRUE(WaitUntil([&] { return text.ends_with("\n"); }));
    ForkedChild tracer([&] { return hold(std::stoi(text)); });
    const std::string status = "/proc/" + text.substr(0, text.size() - 1) + "/status";
    ASSERT_TRUE(WaitUntil([&] { return !ReadFile(status).contains("TracerPid:\t0\n"); }));
    shell.Run("echo next", {});
    EXPECT_TRUE(WaitUntil([&] { return text.ends_with("next\n"); }));
    EXPECT_TRUE(warning.starts_with("The program sh was killed and has not ended")) << warning;
    EXPECT_TRUE(WaitUntil([&] { return runtime.IsIdle(); }));
    runtime.ShutDown();
    tracer.Kill();
    EXPECT_TRUE(WaitUntil([&] {
        const auto now = CurrentHoldings();
        return now.threads == before.threads && !now.children;
    })) << "the thread that was left behind has not ended with its program";
}

TEST_F(SimpleShellTest, AProgramThatTheSystemHasReapedHasExited)
{
    signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(Run("echo text"), Pieces{"text\n"});
    signal(SIGCHLD, SIG_DFL);
}

TEST(SimpleShell, ShutDownDuringAProgramDestroysEverythingOnTheUiThread)
{
    const Holdings before = CurrentHoldings();
    const auto ui = std::this_thread::get_id();
    for (const std::string& line : {std::string("yes"), kIgnoresTermination, std::string("true")}) {
        bool done = false;
        bool destroyedOnUi = false;
        std::shared_ptr<SimpleShell> shell;
        {
            Runtime runtime;
            const std::shared_ptr<void> witness(
                nullptr, [&](void*) { destroyedOnUi = std::this_thread::get_id() == ui; });
            std::atomic<int> pieces = 0;
            shell = std::make_shared<SimpleShell>(
                [&, witness](std::string&&) {
                    ++pieces;
                    runtime.queue().Post([witness] {});
                },
                "Test");
            shell->Run(line, [&done, witness] { done = true; });
            while (line == "yes" && pieces < 300) {
                std::this_thread::yield();
            }
            runtime.ShutDown();
        }
        shell.reset();  // Last, like the globals of a module.
        EXPECT_FALSE(done);
        EXPECT_TRUE(destroyedOnUi);
    }
    EXPECT_EQ(SettledHoldings(before), before);
}

#include "SimpleShell.h"

#include "leaks.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Pieces = std::vector<std::string>;

// A shell command as the one word of a command line, which is split by quotes only.
std::string Sh(const std::string& script)
{
    return "sh -c '" + script + "'";
}

const std::string kPrompts = Sh("printf \"name? \"; exec sleep 1000");
const std::string kIgnoresTermination = Sh("trap \"\" TERM; echo ready; exec sleep 1000");

class SimpleShellTest : public testing::Test {
  protected:
    // A shell whose pieces arrive in `pieces_` by way of the queue, as in a host.
    std::shared_ptr<SimpleShell> MakeShell()
    {
        return std::make_shared<SimpleShell>(
            [this](std::string&& text) {
                runtime_.queue().Post(
                    [this, piece = std::move(text)] { pieces_.push_back(piece); });
            },
            "Test");
    }

    // Runs one command to its completion, which must come once and after the last piece.
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
        shell->Run(line, [this] { done_ = true; });
        EXPECT_TRUE(WaitUntil([&] { return !pieces_.empty(); })) << line;
        return shell;
    }

    bool WaitForIdle()
    {
        return WaitUntil([this] { return runtime_.IsIdle(); });
    }

    Runtime runtime_;
    Pieces pieces_;
    bool done_ = false;
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
        {"a character that arrives slowly",
         Sh("for part in \"euro \\342\" \"\\202\" \"\\254 sign\" \" end\\n\"; "
            "do printf \"$part\"; sleep 0.06; done"),
         {"euro ", "€ sign", " end\n"}},
        {"words", "printf '[%s]\\n' 'a b' x;y $HOME\n", {"[a b]\n", "[x;y]\n", "[$HOME]\n"}},
        {"environment", "printenv PYTHONUNBUFFERED PYTHONUTF8\n", {"1\n", "1\n"}},
        {"no input", "wc -c", {"0\n"}},
        {"a crash", Sh("printf \"about to crash\"; kill -ABRT $$"), {"about to crash"}},
        {"no output", "true", {}},
        {"output after closing it", Sh("echo closing; exec >&- 2>&-; sleep 0.2"), {"closing\n"}},
        {"no such tool", "/no/such/tool ls\n", {"/no/such/tool: No such file or directory\n"}},
        {"no program", "/tmp ls\n", {"/tmp: Permission denied\n"}},
        {"unbalanced quotes",
         "tool rm -r :'it's'\n",
         {"Invalid command line: its quotes are not balanced\n"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Run(row.line), row.output) << row.name;
    }
}

TEST_F(SimpleShellTest, WaitsForTheProgramButNotForAGrandchildThatHoldsThePipe)
{
    auto begin = Clock::now();
    Run(Sh("exec >&- 2>&-; sleep 0.2"));
    EXPECT_GE(Clock::now() - begin, milliseconds(200));
    begin = Clock::now();
    const auto pieces = Run(Sh("trap \"\" TERM; sleep 1000 & echo $!"));
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
    ASSERT_EQ(pieces.size(), 1u);
    EXPECT_EQ(kill(std::stoi(pieces[0]), SIGKILL), 0);
}

TEST_F(SimpleShellTest, ForwardsEverythingInOrderFromAReaderFarAhead)
{
    const TemporaryFolder folder;
    std::string text;
    for (int i = 0; i < 100'000; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    const auto pieces = Run("cat " + folder.Write("text", text));
    EXPECT_EQ(pieces.size(), 100'000u);
    std::string all;
    for (const auto& piece : pieces) {
        all += piece;
    }
    EXPECT_TRUE(all == text);
}

TEST_F(SimpleShellTest, StopReturnsAtOnceAndDropsTheCompletion)
{
    for (const std::string& line : {std::string("yes"), kIgnoresTermination, kPrompts}) {
        const auto shell = Start(line);
        const auto begin = Clock::now();
        shell->Stop();
        EXPECT_LT(Clock::now() - begin, milliseconds(50)) << line;
        EXPECT_TRUE(WaitForIdle());
        EXPECT_FALSE(done_) << line;
        pieces_.clear();
    }
    const auto threads = CurrentHoldings().threads;
    const auto shell = MakeShell();
    shell->Run("true", [this] { done_ = true; });
    const auto patience = Clock::now() + std::chrono::seconds(20);
    while (CurrentHoldings().threads > threads && Clock::now() < patience) {
        // It ends while the event loop stands still.
    }
    shell->Stop();
    EXPECT_TRUE(WaitForIdle());
    EXPECT_FALSE(done_) << "it was posted already";
}

TEST_F(SimpleShellTest, AReaderFarAheadWaitsAndAStopReachesItThere)
{
    const Holdings before = CurrentHoldings();
    std::atomic<int> forwarded = 0;
    const auto shell = std::make_shared<SimpleShell>(
        [&](std::string&&) {
            ++forwarded;
            runtime_.queue().Post([] {});
        },
        "Test");
    shell->Run("yes", {});
    while (forwarded < 500) {
        std::this_thread::yield();
    }
    poll(nullptr, 0, 100);  // Time enough for ten thousand more.
    EXPECT_LT(forwarded, 600);
    shell->Stop();
    const auto stopped = Clock::now();
    while (CurrentHoldings().children && Clock::now() - stopped < std::chrono::seconds(5)) {
    }
    EXPECT_LT(Clock::now() - stopped, milliseconds(500));
    EXPECT_TRUE(WaitForIdle());
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
    // The grandchild has let go of the pipe.
    const auto stubborn =
        Start(Sh("trap \"\" TERM; sleep 1000 >&- 2>&- & echo $!; trap - TERM; wait"));
    const pid_t grandchild = std::stoi(pieces_.at(0));
    stubborn->Stop();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_TRUE(WaitUntil([&] { return !IsAlive(grandchild); }));
}

TEST_F(SimpleShellTest, TheNextCommandStartsWhenTheStoppedGroupHasEnded)
{
    const auto first = Start(kIgnoresTermination);
    pieces_.clear();
    const auto stoppedAt = Clock::now();
    first->Stop();
    const auto second = Start("echo next");
    EXPECT_EQ(pieces_, Pieces{"next\n"});
    EXPECT_GE(Clock::now() - stoppedAt, milliseconds(450));  // The grace of the first.
}

TEST(SimpleShell, EndingTheRuntimeWhileAProgramRunsDropsEverythingOnTheUiThread)
{
    const Holdings before = CurrentHoldings();
    for (const std::string& line : {std::string("yes"), kIgnoresTermination, std::string("true")}) {
        auto destroyedOn = std::make_shared<std::thread::id>();
        std::shared_ptr<SimpleShell> shell;
        bool done = false;
        {
            Runtime runtime;
            const std::shared_ptr<void> witness(
                nullptr, [destroyedOn](void*) { *destroyedOn = std::this_thread::get_id(); });
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
            const auto begin = Clock::now();
            runtime.ShutDown();
            EXPECT_LT(Clock::now() - begin, std::chrono::seconds(1));
        }
        shell.reset();  // As a module's globals are: after everything else.
        EXPECT_FALSE(done);
        EXPECT_EQ(*destroyedOn, std::this_thread::get_id());
    }
    EXPECT_EQ(SettledHoldings(before), before);
}

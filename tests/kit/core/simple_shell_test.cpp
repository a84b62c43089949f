#include "SimpleShell.h"

#include "leaks.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <poll.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

const std::string kMisbehave = QUILP_TEST_BIN "/misbehave ";

class SimpleShellTest : public testing::Test {
  protected:
    // A shell whose pieces arrive in `pieces`, by way of the queue as a host would have it.
    std::shared_ptr<SimpleShell> MakeShell()
    {
        return std::make_shared<SimpleShell>(
            [this](std::string&& text) {
                runtime_.queue().Post(
                    [this, piece = std::move(text)] { pieces_.push_back(piece); });
            },
            "Test");
    }

    std::string Output() const
    {
        std::string all;
        for (const auto& piece : pieces_) {
            all += piece;
        }
        return all;
    }

    // Runs one command to its completion.
    std::vector<std::string> Run(const std::string& line)
    {
        const auto shell = MakeShell();
        bool done = false;
        shell->Run(line, [&done] { done = true; });
        EXPECT_TRUE(WaitUntil([&] { return done; }));
        return std::exchange(pieces_, {});
    }

    bool WaitForOutput(const std::string& text)
    {
        return WaitUntil([&] { return Output().find(text) != std::string::npos; });
    }

    bool WaitForIdle()
    {
        return WaitUntil([this] { return runtime_.IsIdle(); });
    }

    Runtime runtime_;
    std::vector<std::string> pieces_;
};

using Pieces = std::vector<std::string>;

}  // namespace

TEST_F(SimpleShellTest, HandsOnOneLinePerPieceWithErrorsInOrder)
{
    EXPECT_EQ(Run(kMisbehave + "error-between-lines\n"),
              (Pieces{"one\n", "two\n", "three\n", "four"}));
}

TEST_F(SimpleShellTest, NeverTearsACharacterThatArrivesSlowly)
{
    EXPECT_EQ(Run(kMisbehave + "tear-character"), (Pieces{"euro ", "\xE2\x82\xAC sign", " end\n"}));
}

TEST_F(SimpleShellTest, HandsOnAPromptWithoutLineEndAndStops)
{
    const auto shell = MakeShell();
    shell->Run(kMisbehave + "hold-prompt", {});
    EXPECT_TRUE(WaitForOutput("name? "));
}

TEST_F(SimpleShellTest, GivesTheProgramItsWordsItsEnvironmentAndNoInput)
{
    struct Row {
        const char* line;
        Pieces output;
    };
    const Row rows[] = {
        {"print-words 'a b' x;y $HOME\n", {"[a b]\n", "[x;y]\n", "[$HOME]\n"}},
        {"print-variable PYTHONUNBUFFERED\n", {"1\n"}},
        {"print-variable PYTHONUTF8\n", {"1\n"}},
        {"read-input\n", {"end of input\n"}},
        {"crash\n", {"about to crash"}},
        {"nothing\n", {}},
    };
    setenv("PYTHONUNBUFFERED", "", 1);
    for (const auto& row : rows) {
        EXPECT_EQ(Run(kMisbehave + row.line), row.output) << row.line;
    }
}

TEST_F(SimpleShellTest, TellsInOneLineWhatCannotBeStarted)
{
    EXPECT_EQ(Run("/no/such/tool ls\n"), (Pieces{"/no/such/tool: No such file or directory\n"}));
    EXPECT_EQ(Run("/tmp ls\n"), (Pieces{"/tmp: Permission denied\n"}));
    EXPECT_EQ(Run("tool rm -r :'it's'\n"),
              (Pieces{"The command line cannot be read: its quotes are not balanced\n"}));
}

TEST_F(SimpleShellTest, CompletesAfterTheLastPieceAndOnce)
{
    const auto shell = MakeShell();
    int completions = 0;
    std::size_t piecesBefore = 0;
    shell->Run(kMisbehave + "error-between-lines", [&] {
        ++completions;
        piecesBefore = pieces_.size();
    });
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(piecesBefore, 4u);
}

TEST_F(SimpleShellTest, WaitsForAProgramThatClosedItsOutput)
{
    const auto begin = Clock::now();
    EXPECT_EQ(Run(kMisbehave + "close-output"), (Pieces{"closing\n"}));
    EXPECT_GE(Clock::now() - begin, milliseconds(200));
}

TEST_F(SimpleShellTest, DoesNotWaitForAGrandchildThatHoldsThePipe)
{
    const auto begin = Clock::now();
    const auto pieces = Run(kMisbehave + "leave-grandchild");
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
    ASSERT_EQ(pieces.size(), 1u);
    EXPECT_EQ(kill(std::stoi(pieces[0]), SIGKILL), 0);
}

TEST_F(SimpleShellTest, StopReturnsAtOnceAndDropsTheCompletion)
{
    for (const char* way : {"flood", "ignore-termination", "hold-prompt", "nothing"}) {
        SCOPED_TRACE(way);
        const auto shell = MakeShell();
        bool done = false;
        shell->Run(kMisbehave + way, [&done] { done = true; });
        if (std::string(way) != "nothing") {
            ASSERT_TRUE(WaitUntil([&] { return !pieces_.empty(); }));
        }
        const auto begin = Clock::now();
        shell->Stop();
        EXPECT_LT(Clock::now() - begin, milliseconds(50));
        EXPECT_TRUE(WaitForIdle());
        EXPECT_FALSE(done);
        pieces_.clear();
    }
}

TEST_F(SimpleShellTest, ACompletionThatIsPostedAlreadyIsDroppedByAStop)
{
    const auto threads = CurrentHoldings().threads;
    const auto shell = MakeShell();
    bool done = false;
    shell->Run(kMisbehave + "nothing", [&done] { done = true; });
    const auto patience = Clock::now() + std::chrono::seconds(20);
    while (CurrentHoldings().threads > threads && Clock::now() < patience) {
        // It ends while nobody looks.
    }
    shell->Stop();
    EXPECT_TRUE(WaitForIdle());
    EXPECT_FALSE(done);
}

TEST_F(SimpleShellTest, AReaderFarAheadWaitsAndAStopReachesItThere)
{
    const Holdings before = CurrentHoldings();
    std::atomic<int> handedOn = 0;
    const auto shell = std::make_shared<SimpleShell>(
        [&](std::string&&) {
            ++handedOn;
            runtime_.queue().Post([] {});
        },
        "Test");
    shell->Run(kMisbehave + "flood", {});
    while (handedOn < 500) {
        std::this_thread::yield();
    }
    poll(nullptr, 0, 100);  // Time enough for ten thousand more.
    EXPECT_LT(handedOn, 600);
    shell->Stop();
    const auto stopped = Clock::now();
    while (CurrentHoldings().children && Clock::now() - stopped < std::chrono::seconds(5)) {
    }
    EXPECT_LT(Clock::now() - stopped, milliseconds(500));
    EXPECT_TRUE(WaitForIdle());
    EXPECT_EQ(SettledHoldings(before), before);
}

TEST_F(SimpleShellTest, StopAsksPolitelyFirstAndEndsTheWholeGroup)
{
    const TemporaryFolder folder;
    const auto polite = MakeShell();
    polite->Run(kMisbehave + "tell-termination " + (folder / "told"), {});
    ASSERT_TRUE(WaitForOutput("ready\n"));
    polite->Stop();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_TRUE(std::filesystem::exists(folder / "told"));

    pieces_.clear();
    const auto stubborn = MakeShell();
    stubborn->Run(kMisbehave + "grandchild-ignores-termination", {});
    ASSERT_TRUE(WaitForOutput("\n"));
    const pid_t grandchild = std::stoi(Output());
    stubborn->Stop();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_TRUE(WaitUntil([&] {
        return kill(grandchild, 0) != 0 ||
               ReadFile("/proc/" + std::to_string(grandchild) + "/stat").find(") Z ") !=
                   std::string::npos;
    }));
}

TEST_F(SimpleShellTest, TheNextCommandStartsWhenTheStoppedGroupHasEnded)
{
    const auto first = MakeShell();
    first->Run(kMisbehave + "ignore-termination", {});
    ASSERT_TRUE(WaitForOutput("ready\n"));
    const auto stoppedAt = Clock::now();
    first->Stop();
    EXPECT_EQ(Run(kMisbehave + "print-words next"), (Pieces{"ready\n", "[next]\n"}));
    EXPECT_GE(Clock::now() - stoppedAt, milliseconds(450));  // The grace of the first.
}

TEST_F(SimpleShellTest, NothingIsLostWhenTheReaderIsFarAhead)
{
    const TemporaryFolder folder;
    std::string text;
    for (int i = 0; i < 100000; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    folder.Write("text", text);
    const auto shell = MakeShell();
    bool done = false;
    shell->Run("cat " + (folder / "text"), [&] { done = true; });
    ASSERT_TRUE(WaitUntil([&] { return done; }));
    EXPECT_EQ(pieces_.size(), 100000u);
    EXPECT_EQ(Output(), text);
}

TEST_F(SimpleShellTest, AThousandStartsAndStopsInVariedOrderLeaveNothing)
{
    Run(kMisbehave + "nothing");
    const Holdings before = CurrentHoldings();
    std::mt19937 random(1);
    const char* ways[] = {"nothing", "flood", "error-between-lines", "hold-prompt", "/no/such"};
    std::vector<std::shared_ptr<SimpleShell>> shells(3);
    int completions = 0;
    for (int i = 0; i < 1000; ++i) {
        auto& shell = shells[random() % shells.size()];
        switch (random() % 4) {
            case 0: shell.reset(); break;
            case 1:
                if (shell) {
                    shell->Stop();
                }
                break;
            default: shell = MakeShell();
        }
        if (shell) {
            shell->Run(kMisbehave + ways[random() % std::size(ways)], [&] { ++completions; });
        }
        const auto turns = random() % 3;
        for (unsigned turn = 0; turn < turns; ++turn) {
            QCoreApplication::processEvents();
        }
        if (i % 100 == 0) {
            pieces_.clear();
        }
    }
    shells.clear();
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(SettledHoldings(before), before);
}

TEST(SimpleShell, EndingTheProgramWhileItRunsWithOutputQueuedDropsEverythingOnTheUiThread)
{
    const Holdings before = CurrentHoldings();
    for (const char* way : {"flood", "ignore-termination", "nothing"}) {
        auto captured = std::make_shared<std::thread::id>();
        std::shared_ptr<SimpleShell> shell;
        bool done = false;
        {
            Runtime runtime;
            const std::shared_ptr<void> witness(
                nullptr, [captured](void*) { *captured = std::this_thread::get_id(); });
            std::atomic<int> pieces = 0;
            shell = std::make_shared<SimpleShell>(
                [&, witness](std::string&&) {
                    ++pieces;
                    runtime.queue().Post([witness] {});
                },
                "Test");
            shell->Run(kMisbehave + way, [&done, witness] { done = true; });
            while (pieces < 300 && std::string(way) == "flood") {
                std::this_thread::yield();
            }
            const auto begin = Clock::now();
            runtime.ShutDown();
            EXPECT_LT(Clock::now() - begin, std::chrono::seconds(1));
        }
        shell.reset();  // As a module's globals are: after everything else.
        EXPECT_FALSE(done);
        EXPECT_EQ(*captured, std::this_thread::get_id());
    }
    EXPECT_EQ(SettledHoldings(before), before);
}

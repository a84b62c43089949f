// Stress tests, which scripts/soak builds and runs.

#include "SimpleShell.h"
#include "board_process.h"
#include "leaks.h"
#include "runtime.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace {

using Words = std::vector<std::string>;

// Checks that no resources are left at the end.
class Soak : public testing::Test {
  protected:
    ~Soak() override { EXPECT_EQ(SettledHoldings(before), before); }

    const Holdings before = CurrentHoldings();
    std::mt19937 random{1};
};

class SoakOnBoard : public Soak {
  protected:
    Words Editor(const std::string& program, const Words& commands) const
    {
        Words words{QUILP_BIN "/quilp-editor", "--document", local.Write("s.py", program),
                    "--batch"};
        words.insert(words.end(), commands.begin(), commands.end());
        return words;
    }

    const BoardProcess board;
    const TemporaryFolder local;
};

long ResidentKibibytes(pid_t process)
{
    const auto status = ReadFile("/proc/" + std::to_string(process) + "/status");
    const auto at = status.find("VmRSS:");
    return at == std::string::npos ? 0 : std::stol(status.substr(at + 6));
}

}  // namespace

TEST_F(Soak, AThousandStartsAndStopsInRandomOrder)
{
    Runtime runtime;
    const char* lines[] = {"true",          "yes",        "sh -c 'echo one; echo two >&2'",
                           "cat /dev/zero", "sleep 1000", "/no/such"};
    std::vector<std::shared_ptr<SimpleShell>> shells(3);
    for (int i = 0; i < 1000; ++i) {
        auto& shell = shells[random() % shells.size()];
        switch (random() % 4) {
            case 0: shell.reset(); break;
            case 1:
                if (shell) {
                    shell->Stop();
                }
                break;
            default:
                shell = std::make_shared<SimpleShell>(
                    [&](std::string&&) { runtime.queue().Post([] {}); }, "Soak");
                shell->Run(lines[random() % std::size(lines)], [] {});
        }
        for (auto iterations = random() % 3; iterations > 0; --iterations) {
            QCoreApplication::processEvents();
        }
    }
    shells.clear();
    EXPECT_TRUE(WaitUntil([&] { return runtime.IsIdle(); }));
}

TEST_F(SoakOnBoard, TwoHundredConsecutiveCommandsSucceed)
{
    Words commands;
    std::string expected;
    for (int i = 0; i < 50; ++i) {
        commands.insert(commands.end(), {"upload", "run", "list", "copy-template"});
        expected += "cp " + (local / "s.py") + " :s.py\n" + (i > 0 ? "Up to date: s.py\n" : "") +
                    "ran\r\nls :\n          13 s.py\n" QUILP_MPREMOTE " cp '<from>':'<to>'";
    }
    EXPECT_EQ(RunProgram(Editor("print('ran')\n", commands), board.variables()).output, expected);
}

TEST_F(SoakOnBoard, MemoryStaysBoundedWhileAProgramPrintsForAMinute)
{
    BackgroundProgram editor(
        Editor("while True: print('x' * 70)\n", {"help", "run", "wait=60", "stop"}),
        board.variables());
    ASSERT_TRUE(editor.WaitForOutput("WIP.\n"));
    const long idle = ResidentKibibytes(editor.pid());
    ASSERT_GT(idle, 0);
    long maximum = idle;
    while (!editor.WaitForExit(std::chrono::milliseconds(50))) {
        maximum = std::max(maximum, ResidentKibibytes(editor.pid()));
    }
    EXPECT_LT(maximum - idle, 64 * 1024);
    EXPECT_TRUE(board.IsAtPrompt());
}

TEST_F(SoakOnBoard, BoardStaysUsableWheneverTheToolIsKilled)
{
    const auto large = local.Write("large.bin", std::string(100'000, 'l'));
    const auto endless = local.Write("e.py", "while True: print('x' * 50)\n");
    const Words commands[] = {
        {"run", endless}, {"cp", large, ":l.bin"}, {"ls"}, {"exec", "while True: pass"}};
    const int numbers[] = {SIGKILL, SIGTERM, SIGINT};
    for (int i = 0; i < 100; ++i) {
        Words line{QUILP_MPREMOTE};
        const auto& words = commands[random() % std::size(commands)];
        line.insert(line.end(), words.begin(), words.end());
        {
            BackgroundProgram tool(line, board.variables());
            tool.WaitForExit(std::chrono::milliseconds(random() % 300));
            tool.Signal(numbers[random() % std::size(numbers)]);
            tool.WaitForExit(std::chrono::seconds(2));
        }
        ASSERT_EQ(board.Tool({"exec", "print('next')"}).output, "next\r\n") << i;
    }
}

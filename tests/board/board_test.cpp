#include "board_process.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>

#include <chrono>
#include <filesystem>

namespace {

using Clock = std::chrono::steady_clock;

// A line in the raw REPL, connected as the tool does: interrupt, raw REPL, soft reset.
class RawLine : public BoardLine {
  public:
    explicit RawLine(const BoardProcess& board) : BoardLine(board.devicePath())
    {
        const std::string banner = "raw REPL; CTRL-B to exit\r\n>";
        Send("\r\x03\r\x01");
        EXPECT_TRUE(ReadTo(banner).ends_with(banner));
        Send("\x04");
        ReadTo("soft reboot\r\n");
        EXPECT_TRUE(ReadTo(banner).ends_with(banner));
    }
};

// What a sent text brings, up to and with `end`.
struct Exchange {
    std::string_view sent, end, received;
};

void ExpectExchanges(BoardLine& line, std::initializer_list<Exchange> exchanges)
{
    for (const auto& one : exchanges) {
        line.Send(one.sent);
        EXPECT_EQ(line.ReadTo(one.end), one.received) << "after " << one.sent.substr(0, 80);
    }
}

}  // namespace

TEST(Board, ServesTheRealTool)
{
    const BoardProcess board({{"boot.py", "booted = 'yes'\n"}, {"lib/helper.py", "answer = 42\n"}});
    const TemporaryFolder local;
    const auto hello = local.Write("hello.py", "import helper\nprint(helper.answer, booted)\n");
    const auto bytes = local.Write("bytes.bin", EveryByte());
    local.Write("tree/one.txt", "one");
    local.Write("tree/sub/two.txt", "two");

    const struct {
        std::vector<std::string> words;
        std::string output;
    } rows[] = {
        {{"run", hello}, "42 yes\r\n"},
        {{"cp", bytes, ":b.bin"}, "cp " + bytes + " :b.bin\n"},
        {{"mkdir", ":data"}, "mkdir :data\n"},
        {{"cp", "-r", local / "tree", ":/data"}, "cp " + (local / "tree") + " :/data\n"},
        {{"ls", "/data/tree"}, "ls :/data/tree\n           3 one.txt\n           0 sub/\n"},
        {{"cat", "/data/tree/sub/two.txt"}, "two"},
        {{"sha256sum", "b.bin"},
         "sha256sum :b.bin\n40aff2e9d2d8922e47afd4648e6967497158785fbd1da870e7110266bf944880\n"},
        {{"rm", "-r", ":/data"}, "rm :/data\n"},
    };
    for (const auto& row : rows) {
        const auto result = board.Tool(row.words);
        EXPECT_EQ(result.output, row.output);
        EXPECT_EQ(result.status, 0);
    }
    EXPECT_EQ(ReadFile(board.files() / "b.bin"), EveryByte());
    EXPECT_FALSE(std::filesystem::exists(board.files() / "data"));
    const auto devices = board.Tool({"devs"}).output;
    EXPECT_NE(
        devices.find(board.devicePath() + " 0123456789ab f055:0001 MicroPython Virtual board\n"),
        std::string::npos);
    EXPECT_NE(board.Tool({"df"}).output.find("16777216"), std::string::npos);
}

TEST(Board, APathCannotLeaveTheBoardsFolder)
{
    const BoardProcess board(BoardProcess::Files{{"x.txt", "x"}});
    EXPECT_NE(board.Tool({"ls", "/../../../etc"}).status, 0);
    EXPECT_EQ(
        board.Tool({"exec", "import os; os.chdir('/'); os.chdir('..'); print(os.listdir('..'))"})
            .output,
        "['x.txt']\r\n");
}

TEST(Board, EveryKindOfEndlessProgramIsInterruptedAtOnce)
{
    const BoardProcess board;
    for (const std::string program : {
             "while True: pass",
             "import time\nprint('go')\ntime.sleep(1000)",
             "while True: print('x' * 60)",
             "input()",
             "try:\n while True: pass\nfinally: print('cleaned up')",
         }) {
        SCOPED_TRACE(program);
        RawLine line(board);
        line.Send(program + "\x04");
        line.ReadTo("OK");
        poll(nullptr, 0, 50);  // It has started; nothing reports that.
        const auto begin = Clock::now();
        line.Send("\x03");
        const auto rest = line.ReadTo("KeyboardInterrupt: \r\n\x04>");
        EXPECT_TRUE(rest.ends_with("KeyboardInterrupt: \r\n\x04>"));
        EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(500));
        EXPECT_EQ(rest.find("cleaned up") != std::string::npos,
                  program.find("finally") != std::string::npos);
    }
}

TEST(Board, AProgramThatSwallowsInterruptsIsEndedByAReset)
{
    const BoardProcess board;
    RawLine line(board);
    line.Send("while True:\n try:\n  while True: pass\n except KeyboardInterrupt: pass\n\x04");
    line.ReadTo("OK");
    line.Send("\x03\x02");
    EXPECT_TRUE(line.ReadTo("\r\n>>> ").ends_with("\r\n>>> "));
}

TEST(Board, RawPasteReceivesLongTextsInWindowsAndCanBeAborted)
{
    const BoardProcess board;
    RawLine line(board);
    const std::string_view start("\x05\x41\x01");
    const std::string_view header("R\x01\x00\x40\x01", 5);
    const std::string program = "print(len('" + std::string(40000, 'x') + "'))\x04";
    ExpectExchanges(line, {{start, header, header},
                           {std::string_view(program).substr(0, 16384), "\x01", "\x01"},
                           {std::string_view(program).substr(16384), ">",
                            "\x01\x04"
                            "40000\r\n\x04\x04>"},
                           {start, header, header},
                           {"print('never')\x03", ">", "\x04>"},
                           {"1/0\x04", "\x04>",
                            "OK\x04Traceback (most recent call last):\r\n  File \"<stdin>\", "
                            "line 1, in <module>\r\nZeroDivisionError: divide by zero\r\n\x04>"}});
}

TEST(Board, PowerOnRunsBootAndMainButTheToolsResetRunsBootOnly)
{
    const BoardProcess board(
        {{"boot.py", "print('boot')\n"},
         {"main.py",
          "open('main.txt', 'a').write('m')\nimport time\nwhile True: print('busy')\n"}});
    ASSERT_TRUE(WaitUntil([&] { return ReadFile(board.files() / "main.txt") == "m"; }));
    EXPECT_FALSE(board.IsAtPrompt());
    EXPECT_EQ(board.Tool({"exec", "print('mine')"}).output, "mine\r\n");
    EXPECT_EQ(ReadFile(board.files() / "main.txt"), "m");
    EXPECT_TRUE(board.IsAtPrompt());
}

TEST(Board, ExitResetsAndACrashIsSurvived)
{
    const BoardProcess board;
    RawLine line(board);
    ExpectExchanges(line, {{"kept = 1\x04", "\x04>", "OK\x04\x04>"},
                           {"import sys; sys.exit()\x04", ">",
                            "OK\x04\x04MPY: soft reboot\r\nraw REPL; CTRL-B to exit\r\n>"},
                           {"print('kept' in globals())\x04", "\x04>", "OKFalse\r\n\x04\x04>"}});
    line.Send("import ffi; ffi.open(None).func('v', 'abort', '')()\x04");
    EXPECT_NE(line.ReadTo("\x04>").find("the interpreter has exited"), std::string::npos);
    ExpectExchanges(line, {{"print('alive')\x04", "\x04>", "OKalive\r\n\x04\x04>"}});
}

TEST(Board, UnreadInputGoesToTheNextProgramOrThePrompt)
{
    const BoardProcess board;
    RawLine line(board);
    ExpectExchanges(line, {{"import sys\nprint(sys.stdin.readline())\x04one\nprint(2)\x04", ">",
                            "OKone\r\n\r\n\x04\x04>"},
                           {"", ">", "OK2\r\n\x04\x04>"}});
}

TEST(Board, AClientThatLeavesDoesNotTakeTheLineFromAnother)
{
    const BoardProcess board;
    for (int i = 0; i < 50; ++i) {
        BoardLine stays(board.devicePath());
        {
            const BoardLine leaves(board.devicePath());
        }
        stays.Send("\r");
        ASSERT_TRUE(stays.ReadTo(">>> ").ends_with(">>> ")) << i;
    }
}

TEST(Board, AProgramThatIsTooLargeIsAnErrorAndNothingMore)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto huge = local.Write("huge.py", "x = 1\n" + std::string(6'000'000, '#'));
    EXPECT_EQ(board.Tool({"run", huge}).output,
              "MemoryError: the program is larger than the board's memory\r\n");
    EXPECT_EQ(board.Tool({"exec", "print(1)"}).output, "1\r\n");
}

TEST(Board, CanBeUnpluggedInTheMiddleAndPluggedAgain)
{
    BoardProcess board;
    const TemporaryFolder local;
    const auto endless = local.Write("e.py", "while True: print('x')\n");
    BackgroundProgram tool({QUILP_MPREMOTE, "run", endless}, board.variables());
    ASSERT_TRUE(tool.WaitForOutput("x"));
    board.Unplug();
    EXPECT_TRUE(tool.WaitForExit(std::chrono::seconds(10)));
    EXPECT_EQ(board.Tool({"ls"}).output, "mpremote: no device found\n");
    board.Plug();
    EXPECT_EQ(board.Tool({"ls"}).output, "ls :\n");
}

TEST(Board, WorksAfterTheToolWasKilledInTheMiddleOfAnything)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto endless = local.Write("e.py", "while True: print('x' * 50)\n");
    const auto large = local.Write("large.bin", std::string(100'000, 'l'));
    int patience = 0;  // From the tool's start to its work on the board.
    for (const auto& words : {std::vector<std::string>{"run", endless},
                              {"cp", large, ":l.bin"},
                              {"exec", "while True: pass"}}) {
        for (const int number : {SIGKILL, SIGTERM, SIGINT}) {
            std::vector<std::string> line{QUILP_MPREMOTE};
            line.insert(line.end(), words.begin(), words.end());
            {
                BackgroundProgram tool(line, board.variables());
                tool.WaitForExit(std::chrono::milliseconds(patience += 35));
                tool.Signal(number);
                tool.WaitForExit(std::chrono::seconds(2));
            }
            ASSERT_EQ(board.Tool({"exec", "print('next')"}).output, "next\r\n")
                << words[0] << " after " << patience << " ms";
        }
    }
}

TEST(Board, EndsCleanlyOnSignals)
{
    for (const int number : {SIGINT, SIGTERM}) {
        const TemporaryFolder folder;
        BackgroundProgram board(
            {QUILP_BIN "/virtual-board", "--link", folder / "port", folder / "f"});
        ASSERT_TRUE(board.WaitForOutput("/dev/"));
        board.Signal(number);
        EXPECT_TRUE(board.WaitForExit(std::chrono::seconds(2)));
        EXPECT_FALSE(std::filesystem::is_symlink(folder / "port"));
    }
}

TEST(Board, ReportsWhatIsWrong)
{
    const TemporaryFolder folder;
    const auto file = folder.Write("file", "");
    const auto notAFolder = RunProgram({QUILP_BIN "/virtual-board", file});
    EXPECT_EQ(notAFolder.status, 1);
    EXPECT_EQ(notAFolder.output, "virtual-board: " + file + ": Not a directory\n");
    EXPECT_EQ(RunProgram({QUILP_BIN "/virtual-board"}).status, 2);
    const auto noInterpreter =
        RunProgram({QUILP_BIN "/virtual-board", folder / "f"}, {"QUILP_MICROPYTHON=/no/such"});
    EXPECT_EQ(noInterpreter.status, 1);
    EXPECT_NE(noInterpreter.output.find("/no/such"), std::string::npos);
}

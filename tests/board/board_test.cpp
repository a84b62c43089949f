#include "board_process.h"

#include "descriptors.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;

// A raw client of the line, for what the tool would not send.
class Line {
  public:
    explicit Line(const BoardProcess& board)
        : fd_(open(board.devicePath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;
    ~Line() { CloseDescriptor(fd_); }

    void Send(std::string_view text) const { EXPECT_TRUE(WriteFully(fd_, text)); }

    // Reads up to and with `text`; all there was when it did not come.
    std::string ReadTo(std::string_view text)
    {
        const auto end = Clock::now() + std::chrono::seconds(15);
        while (pending_.find(text) == std::string::npos && Clock::now() < end) {
            pollfd readable{fd_, POLLIN, 0};
            poll(&readable, 1, 20);
            pending_ += ReadAvailable(fd_);
        }
        const auto at = pending_.find(text);
        const auto size = at == std::string::npos ? pending_.size() : at + text.size();
        const std::string taken = pending_.substr(0, size);
        pending_.erase(0, size);
        return taken;
    }

    // As the tool connects: interrupt, raw REPL, soft reset.
    void EnterRawRepl()
    {
        const std::string banner = "raw REPL; CTRL-B to exit\r\n>";
        Send("\r\x03\r\x01");
        EXPECT_TRUE(ReadTo(banner).ends_with(banner));
        Send("\x04");
        ReadTo("soft reboot\r\n");
        EXPECT_TRUE(ReadTo(banner).ends_with(banner));
    }

  private:
    int fd_;
    std::string pending_;
};

}  // namespace

TEST(Board, ServesTheRealTool)
{
    const BoardProcess board({{"boot.py", "booted = 'yes'\n"}, {"lib/helper.py", "answer = 42\n"}});
    const TemporaryFolder local;
    const auto hello = local.Write("hello.py", "import helper\nprint(helper.answer, booted)\n");
    const auto bytes = local.Write("bytes.bin", EveryByte());
    local.Write("tree/one.txt", "one");
    local.Write("tree/sub/two.txt", "two");

    struct Row {
        std::vector<std::string> words;
        std::string output;
    };
    const Row rows[] = {
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
    const char* programs[] = {
        "while True: pass",
        "import time\nprint('go')\ntime.sleep(1000)",
        "while True: print('x' * 60)",
        "input()",
        "try:\n while True: pass\nfinally: print('cleaned up')",
    };
    for (const char* program : programs) {
        SCOPED_TRACE(program);
        Line line(board);
        line.EnterRawRepl();
        line.Send(std::string(program) + "\x04");
        line.ReadTo("OK");
        poll(nullptr, 0, 50);  // It is under way; nothing tells.
        const auto begin = Clock::now();
        line.Send("\x03");
        const auto rest = line.ReadTo("KeyboardInterrupt: \r\n\x04>");
        EXPECT_TRUE(rest.ends_with("KeyboardInterrupt: \r\n\x04>"));
        EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(500));
        EXPECT_EQ(rest.find("cleaned up") != std::string::npos,
                  std::string(program).find("finally") != std::string::npos);
    }
}

TEST(Board, AProgramThatSwallowsInterruptsIsEndedByAReset)
{
    const BoardProcess board;
    Line line(board);
    line.EnterRawRepl();
    line.Send("while True:\n try:\n  while True: pass\n except KeyboardInterrupt: pass\n\x04");
    line.ReadTo("OK");
    line.Send("\x03\x02");
    EXPECT_TRUE(line.ReadTo("\r\n>>> ").ends_with("\r\n>>> "));
}

TEST(Board, RawPasteTakesLongTextsInWindowsAndCanBeBrokenOff)
{
    const BoardProcess board;
    Line line(board);
    line.EnterRawRepl();
    const std::string header("R\x01\x00\x40\x01", 5);
    std::string program = "print(len('" + std::string(40000, 'x') + "'))";

    line.Send(
        "\x05"
        "A\x01");
    EXPECT_EQ(line.ReadTo(header), header);
    line.Send(program.substr(0, 16384));
    EXPECT_EQ(line.ReadTo("\x01"), "\x01");
    line.Send(program.substr(16384) + "\x04");
    EXPECT_EQ(line.ReadTo(">"),
              "\x01\x04"
              "40000\r\n\x04\x04>");

    line.Send(
        "\x05"
        "A\x01");
    line.ReadTo(header);
    line.Send("print('never')\x03");
    EXPECT_EQ(line.ReadTo(">"), "\x04>");
    line.Send("1/0\x04");
    EXPECT_EQ(line.ReadTo("\x04>"),
              "OK\x04Traceback (most recent call last):\r\n  File \"<stdin>\", "
              "line 1, in <module>\r\nZeroDivisionError: divide by zero\r\n\x04>");
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
    Line line(board);
    line.EnterRawRepl();
    line.Send("kept = 1\x04");
    line.ReadTo(">");
    line.Send("import sys; sys.exit()\x04");
    EXPECT_EQ(line.ReadTo(">"), "OK\x04\x04MPY: soft reboot\r\nraw REPL; CTRL-B to exit\r\n>");
    line.Send("print('kept' in globals())\x04");
    EXPECT_EQ(line.ReadTo("\x04>"), "OKFalse\r\n\x04\x04>");
    line.Send("import ffi; ffi.open(None).func('v', 'abort', '')()\x04");
    EXPECT_NE(line.ReadTo("\x04>").find("the interpreter has ended"), std::string::npos);
    line.Send("print('alive')\x04");
    EXPECT_EQ(line.ReadTo("\x04>"), "OKalive\r\n\x04\x04>");
}

TEST(Board, UnreadInputGoesToTheNextProgramOrThePrompt)
{
    const BoardProcess board;
    Line line(board);
    line.EnterRawRepl();
    line.Send("import sys\nprint(sys.stdin.readline())\x04one\nprint(2)\x04");
    EXPECT_EQ(line.ReadTo(">"), "OKone\r\n\r\n\x04\x04>");
    EXPECT_EQ(line.ReadTo(">"), "OK2\r\n\x04\x04>");
}

TEST(Board, AClientThatLeavesDoesNotTakeTheLineFromAnother)
{
    const BoardProcess board;
    for (int i = 0; i < 50; ++i) {
        Line stays(board);
        {
            const Line leaves(board);
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
    const auto large = local.Write("large.bin", std::string(100000, 'l'));
    const std::vector<std::string> commands[] = {
        {"run", endless}, {"cp", large, ":l.bin"}, {"ls"}, {"exec", "while True: pass"}};
    std::mt19937 random(2);
    for (int i = 0; i < 40; ++i) {
        std::vector<std::string> line{QUILP_MPREMOTE};
        const auto& words = commands[random() % std::size(commands)];
        line.insert(line.end(), words.begin(), words.end());
        {
            BackgroundProgram tool(line, board.variables());
            tool.WaitForExit(std::chrono::milliseconds(random() % 300));
            const int numbers[] = {SIGKILL, SIGTERM, SIGINT};
            tool.Signal(numbers[random() % std::size(numbers)]);
            tool.WaitForExit(std::chrono::seconds(2));
        }
        ASSERT_EQ(board.Tool({"exec", "print('next')"}).output, "next\r\n") << i;
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

TEST(Board, TellsWhatIsWrong)
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

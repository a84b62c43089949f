#include "board_process.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <filesystem>

namespace {

// A connection in the raw REPL, opened as the tool does: interrupt, raw REPL, soft reset.
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

// Sends each text and expects the answer up to and including `end`.
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
    const auto bytes = local.Write("tree/bytes.bin", EveryByte());
    local.Write("tree/sub/two.txt", "two");
    const struct {
        std::vector<std::string> words;
        std::string output;
    } rows[] = {
        {{"run", hello}, "42 yes\r\n"},
        {{"mkdir", ":data"}, "mkdir :data\n"},
        {{"cp", "-r", local / "tree", ":/data"}, "cp " + (local / "tree") + " :/data\n"},
        {{"ls", "/data/tree"}, "ls :/data/tree\n         256 bytes.bin\n           0 sub/\n"},
        {{"cat", "/data/tree/sub/two.txt"}, "two"},
        {{"cp", bytes, ":b.bin"}, "cp " + bytes + " :b.bin\n"},
        {{"rm", "-r", ":/data"}, "rm :/data\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(board.Tool(row.words).output, row.output);
    }
    EXPECT_EQ(ReadFile(board.files() / "b.bin"), EveryByte());
    EXPECT_FALSE(std::filesystem::exists(board.files() / "data"));
    EXPECT_NE(board.Tool({"devs"}).output.find(
                  board.devicePath() + " 0123456789ab f055:0001 MicroPython Virtual board\n"),
              std::string::npos);
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

TEST(Board, RenamesAndListsFilesWhateverTheirNamesAndLinks)
{
    const BoardProcess board({{"a.txt", "a"}, {"b.txt", "b"}, {"d/x", "x"}, {"bad\xff", ""}});
    std::filesystem::create_symlink("d", board.files() / "link");
    EXPECT_EQ(board
                  .Tool({"exec",
                         "import os; os.rename('a.txt', 'c.txt'); os.rename('c.txt', '/b.txt')\n"
                         "os.rename('d', 'e'); os.rename('e', 'd'); print(sorted(os.listdir()))"})
                  .output,
              "['b.txt', 'd', 'link']\r\n");
    EXPECT_EQ(ReadFile(board.files() / "b.txt"), "a");
    EXPECT_NE(board.Tool({"ls"}).output.find(" link/\n"), std::string::npos);
    EXPECT_NE(board.Tool({"df"}).output.find("<Flash>    16777216    16384 "), std::string::npos);
}

TEST(Board, HasTheModulesOfABoardUnlessItsFilesReplaceThem)
{
    const BoardProcess board;
    EXPECT_EQ(board
                  .Tool({"exec",
                         "import machine, os, sys, time\nmachine.RTC().datetime((2030, 1, 2, 0, 3, "
                         "4, 5, 0))\nprint(time.localtime(), time.mktime(time.localtime()) == "
                         "time.time(), os.uname().machine, machine.unique_id())\n"
                         "sys.stdout.buffer.write(b'\\n')\nprint(end='\\n')"})
                  .output,
              "(2030, 1, 2, 3, 4, 5, 2, 2) True Virtual board b'\\x01#Eg\\x89\\xab'\r\n\n\r\n");
    board.files().Write("machine.py", "mine = 1\n");
    EXPECT_EQ(board.Tool({"exec", "import machine; print(machine.mine)"}).output, "1\r\n");
}

TEST(Board, ThePromptIgnoresArrowKeysAndErasesWholeCharacters)
{
    const BoardProcess board;
    ASSERT_TRUE(board.IsAtPrompt());
    BoardLine line(board.devicePath());
    ExpectExchanges(line,
                    {{"'x\x1b[1;5Aä\x7f'\r", ">>> ", "'xä\b \b'\r\n'x'\r\n>>> "},
                     {"\x05", "=== ", "\r\npaste mode; Ctrl-C to cancel, Ctrl-D to finish\r\n=== "},
                     {"if 1:\r  print(2)\x04", ">>> ", "if 1:\r\n===   print(2)\r\n2\r\n>>> "}});
}

TEST(Board, AnInterruptTakesEffectAtAnyTimeOfAProgramsStart)
{
    const BoardProcess board;
    RawLine line(board);
    const std::string_view end = "KeyboardInterrupt: \r\n\x04>";
    for (int i = 0; i < 40; ++i) {
        line.Send("while True: pass\x04");
        line.ReadTo("OK");
        line.Send("\x03");
        ASSERT_TRUE(line.ReadTo(end, std::chrono::seconds(2)).ends_with(end)) << i;
    }
}

TEST(Board, EveryKindOfEndlessProgramIsInterrupted)
{
    const BoardProcess board;
    for (const std::string program : {
             "print('started')\nwhile True: pass",
             "import time\nprint('started')\ntime.sleep(1000)",
             "while True: print('started')",
             "import gc\nprint('started')\nwhile True: gc.collect()",
             "try:\n print('started')\n input()\nfinally: print('cleaned up')",
         }) {
        SCOPED_TRACE(program);
        RawLine line(board);
        line.Send(program + "\x04");
        EXPECT_EQ(line.ReadTo("started\r\n"), "OKstarted\r\n");
        line.Send("\x03");
        const auto rest = line.ReadTo("KeyboardInterrupt: \r\n\x04>");
        EXPECT_TRUE(rest.ends_with("KeyboardInterrupt: \r\n\x04>"));
        EXPECT_EQ(rest.find("cleaned up") != std::string::npos,
                  program.find("finally") != std::string::npos);
    }
}

TEST(Board, AProgramThatIgnoresInterruptsIsTerminatedByAReset)
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
    EXPECT_TRUE(BoardLine(board.devicePath()).ReadTo("busy").ends_with("busy"));
    EXPECT_EQ(board.Tool({"exec", "print('mine')"}).output, "mine\r\n");
    EXPECT_EQ(ReadFile(board.files() / "main.txt"), "m");
    EXPECT_TRUE(board.IsAtPrompt());
    board.Tool({"reset"});
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(board.files() / "main.txt") == "mm"; }));
}

TEST(Board, IsNotReadyIfItsInterpreterDoesNotStart)
{
    const TemporaryFolder files;
    const auto result =
        RunProgram({QUILP_BIN "/virtual-board", files.path()}, {"QUILP_MICROPYTHON=/bin/false"});
    EXPECT_EQ(result.output,
              "virtual-board: /bin/false does not start: the interpreter has exited\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Board, ExitResetsAndACrashIsSurvived)
{
    const BoardProcess board;
    RawLine line(board);
    ExpectExchanges(line, {{"kept = 1\x04", "\x04>", "OK\x04\x04>"},
                           {"import sys; sys.exit()\x04", ">",
                            "OK\x04\x04MPY: soft reboot\r\nraw REPL; CTRL-B to exit\r\n>"},
                           {"print('kept' in globals())\x04", "\x04>", "OKFalse\r\n\x04\x04>"}});
    line.Send("import ffi; ffi.open(None).func('v', 'abort', '')()\x04print('alive')\x04");
    EXPECT_NE(line.ReadTo("\x04>").find("the interpreter has exited"), std::string::npos);
    EXPECT_EQ(line.ReadTo("\x04>"), "OKalive\r\n\x04\x04>");
}

TEST(Board, AClientThatDisconnectsLeavesAnotherConnected)
{
    const BoardProcess board;
    for (int i = 0; i < 50; ++i) {
        BoardLine stays(board.devicePath());
        BoardLine(board.devicePath()).Send("");
        stays.Send("\r");
        ASSERT_TRUE(stays.ReadTo(">>> ").ends_with(">>> ")) << i;
    }
}

TEST(Board, CanBeUnpluggedDuringAProgramAndPluggedInAgain)
{
    BoardProcess board;
    BackgroundProgram tool({QUILP_MPREMOTE, "exec", "while True: print('x')"}, board.variables());
    ASSERT_TRUE(tool.WaitForOutput("x"));
    board.SetPlugged(false);
    EXPECT_TRUE(tool.WaitForExit());
    EXPECT_EQ(board.Tool({"ls"}).output, "mpremote: no device found\n");
    board.SetPlugged(true);
    EXPECT_EQ(board.Tool({"ls"}).output, "ls :\n");
}

TEST(Board, QuicklyUnpluggedAndPluggedInItEndsPluggedIn)
{
    const TemporaryFolder folder;
    BackgroundProgram board({QUILP_BIN "/virtual-board", "--link", folder / "port", folder / "f"});
    ASSERT_TRUE(board.WaitForOutput("/dev/"));
    for (int i = 0; i < 20; ++i) {
        board.Signal(SIGUSR1);
        board.Signal(SIGUSR2);
        ASSERT_TRUE(WaitUntil([&] {
            BoardLine line(folder / "port");
            line.Send("\r");
            return line.ReadTo(">>> ", std::chrono::milliseconds(200)).ends_with(">>> ");
        })) << i;
    }
}

// The launcher's copy in another folder has no bundled tool; PYTHONPATH replaces it.
TEST(Launcher, RunsTheToolOfItsPythonAndWorksWithoutStandardOutput)
{
    const BoardProcess board;
    const TemporaryFolder folder;
    std::filesystem::copy(QUILP_MPREMOTE, folder / "mpremote.py");
    auto variables = board.variables();
    variables.push_back("PYTHONPATH=" + (folder / "mpremote.py") +
                        "/..:" QUILP_BUNDLE "/../mpremote");
    EXPECT_EQ(RunProgram({folder / "mpremote.py", "ls"}, variables).output, "ls :\n");
    EXPECT_EQ(RunProgram({"sh", "-c", "'" QUILP_MPREMOTE "' touch :t >&-"}, variables).status, 0);
    EXPECT_TRUE(std::filesystem::exists(board.files() / "t"));
}

TEST(Launcher, NeverUsesAnotherBoardInsteadOfTheVirtualOne)
{
    const BoardProcess other(BoardProcess::Files{{"x.txt", "x"}});
    BoardProcess board;
    const TemporaryFolder folder;  // With a module that makes the other board a real one.
    folder.Write("sitecustomize.py",
                 "from serial.tools import list_ports, list_ports_common\n"
                 "port = list_ports_common.ListPortInfo('" +
                     other.devicePath() +
                     "')\n"
                     "port.vid = port.pid = 1\n"
                     "list_ports.comports = lambda: [port]\n");
    const std::string path = "PYTHONPATH=" + folder.path();
    const std::vector<std::string> line{QUILP_MPREMOTE, "rm", ":x.txt"};
    const auto remove = [&] { return RunProgram(line, {board.variables()[0], path}).output; };
    {
        BackgroundProgram user({QUILP_MPREMOTE, "exec", "while True: print(1)"}, board.variables());
        ASSERT_TRUE(user.WaitForOutput("1"));
        EXPECT_EQ(remove(), "mpremote: no device found\n");
    }
    board.SetPlugged(false);
    EXPECT_EQ(remove(), "mpremote: no device found\n");
    EXPECT_TRUE(std::filesystem::exists(other.files() / "x.txt"));
    EXPECT_EQ(RunProgram(line, {path}).output, "rm :x.txt\n");
}

TEST(Launcher, InterruptsTheProgramWhenItsTerminalIsClosed)
{
    const BoardProcess board;
    BackgroundProgram tool({QUILP_MPREMOTE, "exec", "while True: print('x')"}, board.variables());
    ASSERT_TRUE(tool.WaitForOutput("x"));
    tool.Signal(SIGHUP);
    EXPECT_TRUE(tool.WaitForExit());
    EXPECT_TRUE(board.IsAtPrompt());
}

TEST(Board, WorksAfterTheToolWasKilledAtAnyTime)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto large = local.Write("large.bin", std::string(100'000, 'l'));
    int delay = 0;  // From the tool's start to its work on the board, in ms.
    for (const auto& words : {std::vector<std::string>{"exec", "while True: print('x' * 50)"},
                              {"cp", large, ":l.bin"},
                              {"exec", "while True: pass"}}) {
        std::vector<std::string> line{QUILP_MPREMOTE};
        line.insert(line.end(), words.begin(), words.end());
        for (const int number : {SIGKILL, SIGTERM, SIGINT}) {
            BackgroundProgram tool(line, board.variables());
            tool.WaitForExit(std::chrono::milliseconds(delay += 35));
            tool.Signal(number);
            EXPECT_TRUE(tool.WaitForExit());
            ASSERT_EQ(board.Tool({"exec", "print('next')"}).output, "next\r\n")
                << words[0] << " after " << delay << " ms";
        }
    }
}

TEST(Board, RemovesItsLinkWhenASignalTerminatesIt)
{
    for (const int number : {SIGINT, SIGTERM}) {
        const TemporaryFolder folder;
        BackgroundProgram board(
            {QUILP_BIN "/virtual-board", "--link", folder / "port", folder / "f"});
        ASSERT_TRUE(board.WaitForOutput("/dev/"));
        board.Signal(number);
        EXPECT_TRUE(board.WaitForExit());
        EXPECT_FALSE(std::filesystem::is_symlink(folder / "port"));
    }
}

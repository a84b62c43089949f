#include "board_process.h"
#include "descriptors.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
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

// Also if all other tests use the plain tool.
const std::string fast_tool = "QUILP_PLAIN_MPREMOTE=";

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
    EXPECT_NE(board.Tool({"df"}).output.find("<Flash>    16777216    20480 "), std::string::npos);
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

TEST(Board, ProgramsReadTheirInputAsOnABoard)
{
    const BoardProcess board;
    RawLine line(board);
    const struct {
        std::string_view program, input, output;
        std::string setUp = "";  // Before the input is sent.
    } rows[] = {
        {"print(input('name?\\n') + '!')", "Bo\x7fx\r", "name?\r\nBo\b\x1b[Kx\r\nBx!\r\n"},
        {"try: input()\nexcept EOFError: print('end')", "\x04", "end\r\n"},
        {"print(repr(sys.stdin.readline()), repr(sys.stdin.read(3)))", "one\r\xc3\xb6\r\n",
         "'one\\n' '\\xf6\\n\\n'\r\n"},
        {"print(sys.stdin.buffer.read(2), sys.stdin.buffer.readinto(b, 3), b)", "\r\n\xff\r\n",
         "b'\\r\\n' 3 bytearray(b'\\xff\\r\\n\\x00')\r\n"},
        {"print(before, len(p.poll(-1)), len(select.select([sys.stdin], [], [])[0]))\n"
         "sys.stdin.read(1)",
         "x", "([], ([], [], [])) 1 1\r\n"},
        {"print(sys.stdin.buffer.read(2)); micropython.kbd_intr(3)", "\x03\r", "b'\\x03\\r'\r\n",
         "micropython.kbd_intr(-1)\n"},
    };
    for (const auto& row : rows) {
        line.Send(
            "import micropython, select, sys\nb = bytearray(4)\n"
            "p = select.poll(); p.register(sys.stdin, select.POLLIN)\n"
            "before = p.poll(0), select.select([sys.stdin], [], [], 0)\n");
        line.Send(row.setUp + "print('on')\n" + std::string(row.program) + "\x04");
        EXPECT_EQ(line.ReadTo("on\r\n"), "OKon\r\n");
        line.Send(row.input);
        EXPECT_EQ(line.ReadTo("\x04\x04>"), std::string(row.output) + "\x04\x04>") << row.program;
    }
}

TEST(Board, AMountedFolderIsReadAndWritten)
{
    const BoardProcess board;
    const TemporaryFolder folder;
    folder.Write("helper.py", "answer = 42\n");
    folder.Write("\u00fc.bin", EveryByte());
    const auto program = folder.Write(
        "x.py",
        "import array, helper, os, sys\nprint(helper.answer, sorted(os.listdir('/remote')))\n"
        "a = array.array('H', [0] * 200)\nwith open('\u00fc.bin', 'rb') as f:\n"
        "  print(f.readinto(a), bytes(a)[:200] == bytes(range(200)))\n"
        "  with open('copy \u00fc', 'wb') as copy: copy.write(bytes(range(200)) + f.read())\n"
        "for i in range(200): print(os.stat('helper.py')[6], end=str(i))\n"
        "sys.exit()\n");
    auto variables = board.variables();
    variables.push_back("QUILP_MOUNT=" + folder.path());
    const auto result = RunProgram({QUILP_MPREMOTE, "run", program}, variables);
    std::string expected = "42 ['helper.py', 'x.py', '\\xfc.bin']\r\n200 True\r\n";
    for (int i = 0; i < 200; ++i) {
        expected += "12" + std::to_string(i);
    }
    EXPECT_EQ(result.output, expected);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(ReadFile(folder / "copy \u00fc"), EveryByte());
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
    line.Send("import uctypes; uctypes.bytes_at(1, 1)\x04print('alive')\x04");
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
    EXPECT_TRUE(tool.WaitForOutput("mpremote: the board was unplugged"));
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
    std::filesystem::copy(QUILP_BUNDLE "/Resources/mpremote", folder.path());
    auto variables = board.variables();
    variables.push_back("PYTHONPATH=" + (folder / "mpremote.py") +
                        "/..:" QUILP_BUNDLE "/../mpremote");
    variables.push_back("PYTHONSAFEPATH=1");  // Python does not search the launcher's folder.
    EXPECT_EQ(RunProgram({folder / "mpremote.py", "ls"}, variables).output, "ls :\n");
    EXPECT_EQ(RunProgram({"sh", "-c", "'" QUILP_MPREMOTE "' touch :t >&-"}, variables).status, 0);
    EXPECT_TRUE(std::filesystem::exists(board.files() / "t"));
}

TEST(Launcher, EveryCommandDoesTheSameAsInThePlainTool)
{
    const BoardProcess::Files files{{"boot.py", "print('boot')\n"},
                                    {"d/x.txt", std::string(10'000, 'x') + "\r\n"}};
    const BoardProcess fast(files), plain(files);
    const TemporaryFolder local;
    std::string large;
    while (large.size() < 5000) {
        large += EveryByte();
    }
    const auto bytes = local.Write("tree/large.bin", large);
    local.Write("tree/sub/two.txt", "two");
    const auto program = local.Write("p.py", "print('no line end', end='')\n1/0\n");
    const std::vector<std::string> rows[] = {
        {"version"},
        {"help"},
        {"unknown"},
        {"cp", "--help"},
        {"ls", "--unknown"},
        {"run", program},
        {"run", local / "none"},
        {"exec", "for i in range(1000): print('line', i)"},
        {"exec", "--no-follow", "open('later', 'w').close()"},
        {"eval", "bytes(range(256))", "+", "exec", "print('\x04')"},
        {"resume", "sleep", "0.01", "soft-reset"},
        {"cp", bytes, ":"},
        {"cp", bytes, ":large.bin"},  // Up to date.
        {"cp", ":large.bin", local / "back", "+", "cp", local / "back", ":back"},
        {"cp", "-r", local / "tree", ":"},
        {"cp", ":none", local / "back"},
        {"cp", bytes, ":none/"},
        {"cp", program, ":none/p.py"},
        {"ls", ":d", "tree", "+", "fs", "ls", ":none"},
        {"tree", "-s", ":"},
        {"sha256sum", ":large.bin"},
        {"cat", ":d/x.txt", ":none"},
        {"mkdir", ":m", "+", "touch", ":m/t", "+", "rm", ":d/x.txt", "+", "rmdir", ":d"},
        {"rm", "-r", ":tree/sub"},
        {"df"},
        {"mount", local.path(), "exec", "import os; print(os.listdir())", "umount", "ls"},
        {"mount", local.path(), "cp", "-f", bytes, ":/remote/copy"},
        {"mip", "install", "file:none"},
        {"romfs", "query"},
        {"romfs", "build", local / "tree"},
    };
    for (const auto& words : rows) {
        std::vector<std::string> line{QUILP_MPREMOTE};
        line.insert(line.end(), words.begin(), words.end());
        const auto ours = RunProgram(line, {fast.variables()[0], fast_tool});
        const auto tools = RunProgram(line, {plain.variables()[0], "QUILP_PLAIN_MPREMOTE=1"});
        EXPECT_EQ(ours.output, tools.output) << testing::PrintToString(words);
        EXPECT_EQ(ours.status, tools.status) << testing::PrintToString(words);
    }
    EXPECT_EQ(ReadFile(fast.files() / "back"), large);
    EXPECT_EQ(RunProgram({"diff", "-r", fast.files().path(), plain.files().path()}).output, "");
}

TEST(Launcher, FindsTheUsersConfigurationWhereThePlainToolDoes)
{
    const TemporaryFolder home;
    home.Write(".config/mpremote/config.py", "print('of the home folder')");
    home.Write("xdg/mpremote/config.py", "print('of the variable')");
    home.Write(" spaces /mpremote/config.py", "print('of a name with spaces')");
    const struct {
        std::string folder, output;
    } rows[] = {
        {"", "of the home folder"},
        {"  ", "of the home folder"},
        {home / "xdg", "of the variable"},
        {home / " spaces ", "of a name with spaces"},
        {std::filesystem::relative(home / "xdg"), ""},  // As the version of platformdirs does.
    };
    for (const auto& row : rows) {
        const auto output = [&](const std::string& tool) {
            return RunProgram({QUILP_MPREMOTE, "version"},
                              {"HOME=" + home.path(), "XDG_CONFIG_HOME=" + row.folder, tool})
                .output;
        };
        EXPECT_NE(output(fast_tool).find(row.output), std::string::npos) << row.folder;
        EXPECT_EQ(output(fast_tool), output("QUILP_PLAIN_MPREMOTE=1")) << row.folder;
    }
}

// On this board, a file refuses large pieces, and loses the last byte if its name says so.
TEST(Launcher, CopiesInPiecesThatTheBoardTakesAndReportsLostBytes)
{
    const BoardProcess board(BoardProcess::Files{{"boot.py", R"(
import builtins
open_file = open
class File:
    def __init__(self, name, *mode):
        self.name, self.file = name, open_file(name, *mode)
        self.read, self.close = lambda n: self.file.read(self.check(n)), self.file.close
    def check(self, size):
        if size > 256: raise MemoryError
        return size
    def write(self, data):
        self.check(len(data))
        self.file.write(data[:-1] if self.name == 'loses' and len(data) < 256 else data)
builtins.open = File
)"}});
    const auto tool = [&](std::vector<std::string> words) {
        words.insert(words.begin(), QUILP_MPREMOTE);
        return RunProgram(words, {board.variables()[0], fast_tool});
    };
    const TemporaryFolder local;
    const auto source = local.Write("source", EveryByte() + EveryByte() + "end");
    EXPECT_EQ(tool({"cp", source, ":copy"}).status, 0);
    EXPECT_EQ(tool({"cp", ":copy", local / "back"}).status, 0);
    EXPECT_EQ(ReadFile(local / "back"), ReadFile(source));
    EXPECT_TRUE(
        tool({"cp", source, ":loses"}).output.ends_with("cp: loses: Input/output error.\n"));
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
    board.SetPlugged(true);
    const std::string chosen = "QUILP_BOARD=";
    for (const auto& [variable, device] : {std::pair(chosen + board.link(), board.devicePath()),
                                           {chosen + other.link(), other.devicePath()},
                                           {chosen + other.devicePath(), other.devicePath()},
                                           {chosen + folder / "none", ""}}) {
        const auto list =
            RunProgram({QUILP_MPREMOTE, "devs"}, {board.variables()[0], path, variable}).output;
        EXPECT_EQ(list.substr(0, list.find(' ')), device) << variable;
        EXPECT_EQ(std::ranges::count(list, '\n'), device.empty() ? 0 : 1) << list;
    }
}

TEST(Launcher, SendsInputOnlyToTheProgramsOfRunAndExec)
{
    BoardProcess::Files files;  // So many that the program of df takes a while.
    for (int i = 0; i < 1000; ++i) {
        files.emplace_back("d/" + std::to_string(i), "");
    }
    const BoardProcess board(files);
    const auto result = RunProgram({"sh", "-c",
                                    "printf 'Ann\rprint(2)\r\004' | " QUILP_MPREMOTE
                                    " rm :d/1 + df + exec 'print(input())' + exec 'print(1)' + ls"},
                                   board.variables());
    EXPECT_TRUE(result.output.ends_with("\nAnn\r\nAnn\r\n1\r\nls :\n           0 d/\n"))
        << result.output;
}

TEST(Launcher, InputAndOutputDoNotWaitForEachOther)
{
    const BoardProcess board;
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "input").c_str(), 0600), 0);
    const int input = open((folder / "input").c_str(), O_RDWR | O_CLOEXEC);
    BackgroundProgram tool({"sh", "-c", "exec " QUILP_MPREMOTE " exec \"$0\" <\"$1\"",
                            "import select, sys, time\n"
                            "p = select.poll(); p.register(sys.stdin, select.POLLIN)\n"
                            "while not p.poll(0): print('x' * 100)\n"
                            "print('got', sys.stdin.readline())\n"
                            "for i in range(300): print('line', i); time.sleep(0.002)\n"
                            "while True: time.sleep(1)\n",
                            folder / "input"},
                           board.variables());
    ASSERT_TRUE(tool.WaitForOutput("xxx"));
    WriteFully(input, "it\r");
    EXPECT_TRUE(tool.WaitForOutput("got it")) << "during a flood of output";
    BackgroundProgram flood({"sh", "-c", "exec yes >\"$0\"", folder / "input"});
    EXPECT_TRUE(tool.WaitForOutput("line 299")) << "during a flood of input";
    tool.Signal(SIGTERM);
    EXPECT_TRUE(tool.WaitForExit());
    CloseDescriptor(input);
    EXPECT_TRUE(board.IsAtPrompt());
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
                              {"mount", local.path(), "exec", "while True: open('large.bin')"},
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

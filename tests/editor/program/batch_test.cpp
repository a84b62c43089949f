#include "board_process.h"
#include "program.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace {

using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

const std::string kExamples = QUILP_SOURCE "/examples/";

Words Editor(const Words& arguments)
{
    Words words{QUILP_BIN "/quilp-editor"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

ProgramResult RunEditor(const Words& arguments, const Words& variables = {})
{
    return RunProgram(Editor(arguments), variables);
}

}  // namespace

TEST(Batch, RunsTheDocumentOnItsOwnVirtualBoard)
{
    const TemporaryFolder folder;
    const auto result = RunEditor({"--virtual-board=" + folder.path(), "--document",
                                   kExamples + "hello.py", "--batch", "run"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.output,
        "Hello from micropython on linux\r\nline 1\r\nline 2\r\nline 3\r\nline 4\r\nline 5\r\n"
        "Done.\r\n");
}

TEST(Batch, OutputArrivesWhileTheProgramRuns)
{
    const BoardProcess board;
    // The program tells when it printed a line by making a file.
    const TemporaryFolder local;
    const auto script = local.Write("live.py",
                                    "import time\n"
                                    "for i in range(5):\n"
                                    "  open('/mark%d' % i, 'w').close()\n"
                                    "  print('line', i)\n"
                                    "  time.sleep(0.25)\n");
    BackgroundProgram editor(Editor({"--document", script, "--batch", "run"}), board.variables());
    for (int i = 0; i < 5; ++i) {
        const std::string number = std::to_string(i);
        ASSERT_TRUE(
            WaitUntil([&] { return std::filesystem::exists(board.files() / ("mark" + number)); }));
        const auto printed = Clock::now();
        ASSERT_TRUE(editor.WaitForOutput("line " + number + "\r\n"));
        EXPECT_LT(Clock::now() - printed, std::chrono::milliseconds(100));
    }
}

TEST(Batch, EveryLineOfATracebackShowsTheFilesPath)
{
    const BoardProcess board;
    const auto file = kExamples + "traceback.py";
    const auto result = RunEditor({"--document", file, "--batch", "run"}, board.variables());
    EXPECT_EQ(result.output, "Traceback (most recent call last):\r\n  File " + file +
                                 ", line 13, in <module>\r\n  File " + file +
                                 ", line 10, in report\r\n  File " + file +
                                 ", line 5, in ratio\r\nZeroDivisionError: divide by zero\r\n");
}

TEST(Batch, StopStopsTheBoardItselfAndTheNextRunsAllWork)
{
    const BoardProcess board;
    EXPECT_TRUE(board.IsAtPrompt());
    const auto stopped =
        RunEditor({"--document", kExamples + "blink.py", "--batch", "run", "wait=1", "stop"},
                  board.variables());
    EXPECT_EQ(stopped.status, 0);
    EXPECT_TRUE(stopped.output.starts_with("on\r\noff\r\n")) << stopped.output;
    EXPECT_TRUE(board.IsAtPrompt());

    const TemporaryFolder local;
    const auto script = local.Write("s.py", "print('x')\n");
    Words fifty{"--document", script, "--batch"};
    std::string expected;
    for (int i = 0; i < 50; ++i) {
        fifty.emplace_back("run");
        expected += "x\r\n";
    }
    EXPECT_EQ(RunEditor(fifty, board.variables()).output, expected);
}

TEST(Batch, AnInterruptedEditorStopsTheBoardAndLeavesTheOtherCommandsOut)
{
    const BoardProcess board;
    for (const int number : {SIGINT, SIGTERM}) {
        BackgroundProgram editor(
            Editor({"--document", kExamples + "blink.py", "--batch", "run", "upload", "list"}),
            board.variables());
        ASSERT_TRUE(editor.WaitForOutput("on"));
        editor.Signal(number);
        EXPECT_TRUE(editor.WaitForExit(std::chrono::seconds(2)));
        EXPECT_EQ(editor.output().find("ls"), std::string::npos) << editor.output();
        EXPECT_EQ(editor.Status(), 128 + number);
        EXPECT_TRUE(board.IsAtPrompt());
    }
}

TEST(Batch, OutputThatCannotBeWrittenEndsTheEditor)
{
    const std::string editor = QUILP_BIN "/quilp-editor --batch help wait=60";
    const auto full = RunProgram({"sh", "-c", editor + " >/dev/full; echo $?"});
    EXPECT_EQ(full.output, "quilp-editor: standard output: No space left on device\n1\n");
    // A reader that has left is no news.
    const auto left = RunProgram({"sh", "-c", "{ sleep 0.2; " + editor + "; } | true"});
    EXPECT_EQ(left.output, "");
}

TEST(Batch, AProgramThatPrintsWithoutEndNeedsNoMoreMemoryAndStopsAtOnce)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto script = local.Write("e.py", "while True: print('x' * 70)\n");
    BackgroundProgram editor(
        Editor({"--document", script, "--batch", "help", "run", "wait=3", "stop"}),
        board.variables());
    ASSERT_TRUE(editor.WaitForOutput("WIP.\n"));
    const long idle = editor.ResidentMemory();
    ASSERT_GT(idle, 0);
    const auto begin = Clock::now();
    long most = 0;
    while (!editor.WaitForExit(std::chrono::milliseconds(50)) &&
           Clock::now() - begin < std::chrono::seconds(20)) {
        most = std::max(most, editor.ResidentMemory());
    }
    EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(3700));
    EXPECT_GT(editor.output().size(), 10000u);
    EXPECT_LT(most - idle, 64 * 1024);
    EXPECT_TRUE(board.IsAtPrompt());
}

TEST(Batch, AReaderThatStallsDoesNotKeepSignalsFromStoppingTheBoard)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto script = local.Write("e.py", "while True: print('x' * 70)\n");
    for (const int number : {SIGINT, SIGTERM}) {
        BackgroundProgram editor(Editor({"--document", script, "--batch", "run"}),
                                 board.variables());
        int unread = 0;
        do {  // Until the pipe is full and the editor waits.
            unread = editor.UnreadOutput();
            poll(nullptr, 0, 300);
        } while (editor.UnreadOutput() > unread);
        ASSERT_GT(unread, 50000);
        editor.Signal(number);
        EXPECT_TRUE(WaitUntil([&] { return editor.HasExited(); }, std::chrono::seconds(3)));
        EXPECT_TRUE(board.IsAtPrompt());
    }
}

TEST(Batch, AKilledEditorLeavesNoToolBehindAndNoProgramOnTheBoard)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto script = local.Write("e.py", "print('go')\nwhile True: pass\n");
    BackgroundProgram editor(Editor({"--document", script, "--batch", "run"}), board.variables());
    ASSERT_TRUE(editor.WaitForOutput("go"));
    kill(editor.pid(), SIGKILL);
    EXPECT_TRUE(WaitUntil([&] { return board.IsAtPrompt(); }));
    EXPECT_TRUE(WaitUntil([&] { return board.Tool({"exec", "print(1)"}).output == "1\r\n"; }));
}

TEST(Batch, NoNameOfADocumentStartsAnythingButTheTool)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(local.path());
    for (const char* name :
         {"a b.py", "it's.py", "x;touch y.py", "$(touch y.py).py", "a|touch y.py"}) {
        const auto script = local.Write(name, "print('x')\n");
        const auto result = RunEditor({"--document", script, "--batch", "run"}, board.variables());
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_FALSE(result.output.empty()) << name;
        EXPECT_FALSE(std::filesystem::exists("y.py")) << name;
    }
    std::filesystem::current_path(before);
}

TEST(Batch, BadInputGetsAMessageAndItsStatus)
{
    const TemporaryFolder local;
    const auto text = local.Write("notes.txt", "");
    const auto nonsense = local.Write("nonsense.so", "nonsense");
    const std::string plugins = QUILP_TEST_BIN;
    struct Row {
        Words arguments;
        int status;
        const char* message;
    };
    const Row rows[] = {
        {{"--batch", "dance"}, 2, "dance is not a command"},
        {{"--document", local / "no.py", "--batch", "run"},
         2,
         "no.py cannot be read: No such file"},
        {{"--document", local.path(), "--batch", "run"}, 2, "is a folder"},
        {{"--plugin", local / "no.so", "--batch", "help"}, 3, "there is no plug-in"},
        {{"--plugin", nonsense, "--batch", "help"}, 3, "cannot be loaded"},
        {{"--plugin", plugins + "/no_plugin.so", "--batch", "help"}, 3, "is not a plug-in"},
        {{"--plugin", plugins + "/refusing_plugin.so", "--batch", "help"}, 3, "answered 7"},
        {{"--document", text, "--batch", "run"}, 1, "there is no Python document or target"},
        {{"--batch", "upload"}, 1, "there is no Python document or target"},
        {{"--virtual-board=" + text, "--batch", "list"}, 1, "Not a directory"},
        {{"--batch", "help"}, 0, "Run on micropython capable devices.\nWIP.\n"},
    };
    for (const auto& row : rows) {
        const auto result = RunEditor(row.arguments);
        EXPECT_EQ(result.status, row.status) << result.output;
        EXPECT_NE(result.output.find(row.message), std::string::npos) << result.output;
    }
}

TEST(Batch, WithoutABoardTheToolSaysSo)
{
    const auto result = RunEditor({"--document", kExamples + "hello.py", "--batch", "run"},
                                  {"QUILP_VIRTUAL_BOARD="});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "mpremote: no device found\n");
}

TEST(Batch, ATargetRunsWhenTheDocumentIsNotPython)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto target = local.Write("t.py", "print('target')\n");
    const auto text = local.Write("n.txt", "");
    const auto result =
        RunEditor({"--document", text, "--target", target, "--batch", "run"}, board.variables());
    EXPECT_EQ(result.output, "target\r\n");
}

TEST(Batch, EveryCommandWorksOnTheBoard)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const std::string bytes = EveryByte();
    struct Row {
        const char* name;
        std::string content;
    };
    const Row rows[] = {
        {"text.py", "print('text')\n"},          {"binary.py", bytes},           {"empty.py", ""},
        {"large.py", std::string(200'000, '#')}, {"na\u00efve.py", "# UTF-8\n"},
    };
    for (const auto& row : rows) {
        const auto file = local.Write(row.name, row.content);
        const auto result = RunEditor({"--document", file, "--batch", "upload", "upload-as-main"},
                                      board.variables());
        EXPECT_EQ(result.output, "cp " + file + " :" + row.name + "\ncp " + file + " :main.py\n");
        EXPECT_TRUE(ReadFile(board.files() / row.name) == row.content) << row.name;
        EXPECT_TRUE(ReadFile(board.files() / "main.py") == row.content) << row.name;
    }

    const auto listed = RunEditor({"--batch", "list"}, board.variables()).output;
    EXPECT_NE(listed.find("\n      200000 large.py\n"), std::string::npos) << listed;

    const auto status = RunEditor({"--batch", "status"}, board.variables()).output;
    EXPECT_TRUE(status.starts_with(board.devicePath() + " ")) << status;
    EXPECT_NE(status.find("\nfilesystem "), std::string::npos) << status;
    EXPECT_EQ(status.find("0000:0000"), std::string::npos) << status;

    EXPECT_EQ(RunEditor({"--batch", "copy-template"}).output, QUILP_MPREMOTE " cp '<from>':'<to>'");
}

TEST(Batch, TwoHundredCommandsInARowAllWork)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto script = local.Write("s.py", "print('ran')\n");
    Words words{"--document", script, "--batch"};
    std::string expected;
    for (int i = 0; i < 50; ++i) {
        words.insert(words.end(), {"upload", "run", "list", "copy-template"});
        expected += "cp " + script + " :s.py\n" + (i > 0 ? "Up to date: s.py\n" : "") +
                    "ran\r\nls :\n          13 s.py\n" QUILP_MPREMOTE " cp '<from>':'<to>'";
    }
    const auto result = RunEditor(words, board.variables());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, expected);
}

TEST(Batch, APathThatClimbsOutOfALinkIsLeftAsItIs)
{
    const BoardProcess board;
    const TemporaryFolder local;
    local.Write("real/sub/x", "");
    local.Write("real/a.py", "print('right')\n");
    local.Write("a.py", "print('wrong')\n");
    std::filesystem::create_directory_symlink(local / "real/sub", local / "link");
    const auto result =
        RunEditor({"--document", local / "link/../a.py", "--batch", "run"}, board.variables());
    EXPECT_EQ(result.output, "right\r\n");
}

TEST(DeviceWindow, OpensByItselfOrSaysWhyNot)
{
    const TemporaryFolder bundle;
    const auto plugin = bundle / "quilp.so";
    std::filesystem::copy(QUILP_BUNDLE "/quilp.so", plugin);
    const auto tool =
        bundle.Write("Resources/mpremote/mpremote.py", "#!/bin/sh\necho >\"$0.ran\"\n");
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    const Words arguments{"--plugin", plugin, "--open-device-window"};
    const Words screen{"QT_QPA_PLATFORM=offscreen", "XDG_RUNTIME_DIR=" + bundle.path()};

    const auto refused = RunEditor(arguments, screen);
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.output.find("QuilpWindow.ui"), std::string::npos) << refused.output;

    std::filesystem::copy(QUILP_BUNDLE "/Resources/QuilpWindow.ui", bundle / "Resources");
    BackgroundProgram editor(Editor(arguments), screen);
    EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(tool + ".ran"); })) << "no listing";
    editor.Signal(SIGTERM);
    EXPECT_TRUE(editor.WaitForExit(std::chrono::seconds(5)));
    EXPECT_EQ(editor.Status(), 0) << editor.output();
}

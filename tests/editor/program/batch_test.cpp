#include "board_process.h"
#include "subprocess.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

const std::string kExamples = QUILP_SOURCE "/examples/";

Words Editor(Words arguments)
{
    arguments.insert(arguments.begin(), QUILP_BIN "/quilp-editor");
    return arguments;
}

ProgramResult RunEditor(const Words& arguments, const Words& variables = {})
{
    return RunProgram(Editor(arguments), variables);
}

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// The editor on a board of the test's own.
class Batch : public testing::Test {
  protected:
    Words RunScript(const std::string& program) const
    {
        return {"--document", local.Write("s.py", program), "--batch", "run"};
    }
    std::string OutputOf(const Words& arguments) const
    {
        return RunEditor(arguments, board.variables()).output;
    }

    const BoardProcess board;
    const TemporaryFolder local;
};

}  // namespace

TEST_F(Batch, OutputArrivesWhileTheProgramRuns)
{
    // The program reports by a file that it prints a line.
    BackgroundProgram editor(Editor(RunScript("import time\n"
                                              "for i in range(3):\n"
                                              "  open('/mark%d' % i, 'w').close()\n"
                                              "  print('line', i)\n"
                                              "  time.sleep(0.25)\n")),
                             board.variables());
    for (const std::string number : {"0", "1", "2"}) {
        ASSERT_TRUE(WaitUntil([&] { return fs::exists(board.files() / ("mark" + number)); }));
        const auto printed = Clock::now();
        ASSERT_TRUE(editor.WaitForOutput("line " + number + "\r\n"));
        EXPECT_LT(Clock::now() - printed, std::chrono::milliseconds(100));
    }
}

TEST_F(Batch, EveryLineOfATracebackShowsTheFilesPath)
{
    const auto file = kExamples + "traceback.py";
    EXPECT_EQ(OutputOf({"--document", file, "--batch", "run"}),
              "Traceback (most recent call last):\r\n  File " + file +
                  ", line 13, in <module>\r\n  File " + file + ", line 10, in report\r\n  File " +
                  file + ", line 5, in ratio\r\nZeroDivisionError: divide by zero\r\n");
}

TEST_F(Batch, StopStopsTheBoardItselfAndTheNextCommandsAllWork)
{
    auto words = RunScript("print('on')\nwhile True: print('x' * 70)\n");
    words.insert(words.end(), {"wait=1", "stop"});
    EXPECT_TRUE(OutputOf(words).starts_with("on\r\nx"));
    EXPECT_TRUE(board.IsAtPrompt());
    words = RunScript("print('ran')\n");
    std::string expected = "ran\r\n";
    for (int i = 0; i < 3; ++i) {
        words.insert(words.end(), {"upload", "run", "list", "copy-template"});
        expected += "cp " + words[1] + " :s.py\n" + (i > 0 ? "Up to date: s.py\n" : "") +
                    "ran\r\nls :\n          13 s.py\n" QUILP_MPREMOTE " cp '<from>':'<to>'";
    }
    EXPECT_EQ(OutputOf(words), expected);
}

TEST_F(Batch, SignalsStopTheBoardAndSkipTheOtherCommands)
{
    auto words = RunScript("print('on')\nwhile True: print('x' * 70)\n");
    words.insert(words.end(), {"upload", "list"});
    for (const bool isRead : {true, false}) {
        for (const int number : {SIGINT, SIGTERM}) {
            SCOPED_TRACE(std::to_string(number) + (isRead ? "" : " while nobody reads"));
            BackgroundProgram editor(Editor(words), board.variables());
            ASSERT_TRUE(editor.WaitForOutput("on"));
            ASSERT_TRUE(isRead || WaitUntil([&] { return editor.IsPipeFull(); }));
            editor.Signal(number);
            EXPECT_TRUE(WaitUntil([&] { return editor.HasExited(); }));
            EXPECT_FALSE(editor.WaitForOutput("ls")) << "the next command";
            EXPECT_EQ(editor.Status(), 128 + number);
            EXPECT_TRUE(board.IsAtPrompt());
        }
    }
}

TEST_F(Batch, AKilledEditorLeavesNoToolBehindAndNoProgramOnTheBoard)
{
    BackgroundProgram editor(Editor(RunScript("print('go')\nwhile True: pass\n")),
                             board.variables());
    ASSERT_TRUE(editor.WaitForOutput("go"));
    kill(editor.pid(), SIGKILL);
    EXPECT_TRUE(WaitUntil([&] { return board.IsAtPrompt(); }));
    EXPECT_TRUE(WaitUntil([&] { return board.Tool({"exec", "print(1)"}).output == "1\r\n"; }));
}

TEST_F(Batch, NoNameOfADocumentStartsAnythingButTheTool)
{
    const auto before = fs::current_path();
    fs::current_path(local.path());
    for (const char* name :
         {"a b.py", "it's.py", "x;touch y.py", "$(touch y.py).py", "a|touch y.py"}) {
        const auto script = local.Write(name, "print('x')\n");
        EXPECT_FALSE(OutputOf({"--document", script, "--batch", "run"}).empty()) << name;
        EXPECT_FALSE(fs::exists("y.py")) << name;
    }
    fs::current_path(before);
}

TEST_F(Batch, RunsTheTargetOrTheDocumentByItsOwnPath)
{
    local.Write("real/sub/x", "");
    local.Write("real/a.py", "print('right')\n");
    const auto wrong = local.Write("a.py", "print('wrong')\n");
    const auto text = local.Write("n.txt", "");
    fs::create_directory_symlink(local / "real/sub", local / "link");
    const auto path = local / "link/../a.py";  // Leads out of the link's target.
    EXPECT_EQ(OutputOf({"--document", path, "--batch", "run"}), "right\r\n");
    EXPECT_EQ(OutputOf({"--document", text, "--target", wrong, "--batch", "run"}), "wrong\r\n");
}

TEST_F(Batch, EveryCommandWorksOnTheBoard)
{
    const std::pair<std::string, std::string> files[] = {
        {"text.py", "print('text')\n"},          {"binary.py", EveryByte()},     {"empty.py", ""},
        {"large.py", std::string(200'000, '#')}, {"na\u00efve.py", "# UTF-8\n"},
    };
    for (const auto& [name, content] : files) {
        const auto file = local.Write(name, content);
        EXPECT_EQ(OutputOf({"--document", file, "--batch", "upload", "upload-as-main"}),
                  "cp " + file + " :" + name + "\ncp " + file + " :main.py\n");
        EXPECT_TRUE(ReadFile(board.files() / name) == content) << name;
        EXPECT_TRUE(ReadFile(board.files() / "main.py") == content) << name;
    }
    const auto listed = OutputOf({"--batch", "list"});
    EXPECT_TRUE(Contains(listed, "\n      200000 large.py\n")) << listed;
    const auto status = OutputOf({"--batch", "status"});
    EXPECT_TRUE(status.starts_with(board.devicePath() + " ")) << status;
    EXPECT_TRUE(Contains(status, "\nfilesystem ")) << status;
    EXPECT_FALSE(Contains(status, "0000:0000")) << status;
}

TEST(Editor, EveryCommandLineGetsItsMessageAndStatus)
{
    const TemporaryFolder local;
    const auto text = local.Write("notes.txt", "");
    const auto nonsense = local.Write("nonsense.so", "nonsense");
    const auto hello = kExamples + "hello.py";
    const struct {
        Words arguments;
        int status;
        std::string message;
    } rows[] = {
        {{"--virtual-board=" + local / "board", "--document", hello, "--batch", "run"},
         0,
         "Hello from micropython on linux\r\nline 1\r\nline 2\r\nline 3\r\nline 4\r\nline 5\r\n"
         "Done.\r\n"},
        {{"--document", hello, "--batch", "run"}, 0, "mpremote: no device found\n"},
        {{"--batch", "help"}, 0, "Run on micropython capable devices.\nWIP.\n"},
        {{"--batch", "dance"}, 2, "unknown command: dance"},
        {{"--document", local / "no.py", "--batch", "run"}, 2, "no.py cannot be read: No such"},
        {{"--document", local.path(), "--batch", "run"}, 2, "is a folder"},
        {{"--plugin", local / "no.so", "--batch", "help"}, 3, "no.so does not exist"},
        {{"--plugin", nonsense, "--batch", "help"}, 3, "cannot be loaded"},
        {{"--document", text, "--batch", "run"}, 1, "no Python document or target"},
        {{"--batch", "upload"}, 1, "no Python document or target"},
        {{"--virtual-board=" + text, "--batch", "list"}, 1, "Not a directory"},
    };
    for (const auto& row : rows) {
        const auto result = RunEditor(row.arguments, {"QUILP_VIRTUAL_BOARD="});
        EXPECT_EQ(result.status, row.status) << result.output;
        EXPECT_TRUE(Contains(result.output, row.message)) << result.output;
    }
}

TEST(Editor, OutputThatCannotBeWrittenEndsIt)
{
    const std::string editor = QUILP_BIN "/quilp-editor --batch help wait=60";
    const auto full = RunProgram({"sh", "-c", editor + " >/dev/full; echo $?"});
    EXPECT_EQ(full.output,
              "quilp-editor: cannot write to standard output: No space left on device\n1\n");
    const auto left = RunProgram({"sh", "-c", "{ sleep 0.2; " + editor + "; } | true"});
    EXPECT_EQ(left.output, "") << "a reader that has left is no error";
}

TEST(Editor, OpensTheDeviceWindowByItselfOrReportsWhyNot)
{
    const TemporaryFolder bundle;
    const auto plugin = bundle / "quilp.so";
    fs::copy(QUILP_BUNDLE "/quilp.so", plugin);
    const auto tool =
        bundle.Write("Resources/mpremote/mpremote.py", "#!/bin/sh\necho >\"$0.ran\"\n");
    fs::permissions(tool, fs::perms::owner_all);
    const Words arguments{"--plugin", plugin, "--open-device-window"};
    const Words screen{"QT_QPA_PLATFORM=offscreen", "XDG_RUNTIME_DIR=" + bundle.path()};

    const auto refused = RunEditor(arguments, screen);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(Contains(refused.output, "QuilpWindow.ui")) << refused.output;

    fs::copy(QUILP_BUNDLE "/Resources/QuilpWindow.ui", bundle / "Resources");
    BackgroundProgram editor(Editor(arguments), screen);
    EXPECT_TRUE(WaitUntil([&] { return fs::exists(tool + ".ran"); })) << "no listing";
    editor.Signal(SIGTERM);
    EXPECT_TRUE(editor.WaitForExit(std::chrono::seconds(5)));
    EXPECT_EQ(editor.Status(), 0) << editor.output();
}

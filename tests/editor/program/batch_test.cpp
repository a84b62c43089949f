#include "board_process.h"
#include "command_line.h"
#include "subprocess.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

Words Editor(Words arguments)
{
    arguments.insert(arguments.begin(), QUILP_BIN "/quilp-editor");
    return arguments;
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
        return RunProgram(Editor(arguments), board.variables()).output;
    }

    const BoardProcess board;
    const TemporaryFolder local;
};

}  // namespace

TEST_F(Batch, OutputArrivesWhileTheProgramRuns)
{
    // After each line the program waits until it was seen.
    BackgroundProgram editor(Editor(RunScript("import os, time\n"
                                              "for i in range(3):\n"
                                              "  print('line', i)\n"
                                              "  while 'seen%d' % i not in os.listdir('/'):\n"
                                              "    time.sleep(0.01)\n")),
                             board.variables());
    for (const std::string number : {"0", "1", "2"}) {
        ASSERT_TRUE(editor.WaitForOutput("line " + number + "\r\n"));
        std::ofstream(board.files() / ("seen" + number));
    }
    EXPECT_EQ(editor.Status(), 0);
}

TEST_F(Batch, EveryLineOfATracebackShowsTheFilesPath)
{
    const std::string file = QUILP_SOURCE "/examples/traceback.py";
    EXPECT_EQ(OutputOf({"--document", file, "--batch", "run"}),
              "Traceback (most recent call last):\r\n  File " + file +
                  ", line 13, in <module>\r\n  File " + file + ", line 10, in report\r\n  File " +
                  file + ", line 5, in ratio\r\nZeroDivisionError: divide by zero\r\n");
}

TEST_F(Batch, GoesOnAfterWhatAPluginThrowsAndFails)
{
    const auto result =
        RunProgram(Editor({"--plugin", QUILP_TEST_BIN "/throwing_plugin.so", "--document",
                           local.Write("s.py", ""), "--batch", "run", "help", "list"}));
    EXPECT_EQ(result.status, 1) << result.output;
    for (const char* place : {"output", "completion", "QuilpList"}) {
        EXPECT_TRUE(Contains(result.output, std::string("thrown in ") + place)) << result.output;
    }
    EXPECT_TRUE(Contains(result.output, "no help")) << result.output;
}

TEST_F(Batch, StopStopsTheBoardItselfAndTheNextCommandsAllWork)
{
    auto words = RunScript("print('on')\nwhile True: print('x' * 70)\n");
    words.insert(words.end(), {"wait=1", "stop"});
    EXPECT_TRUE(OutputOf(words).starts_with("on\r\nx"));
    EXPECT_TRUE(board.IsAtPrompt());
    words = RunScript("print('ran')\n");
    words.insert(words.end(), {"upload", "run", "list", "copy-template", "upload"});
    const std::string copied = "cp " + words[1] + " :s.py\n";
    EXPECT_EQ(OutputOf(words), "ran\r\n" + copied + "ran\r\nls :\n          13 s.py\n" +
                                   EscapeWord(QUILP_MPREMOTE) + " cp '<from>':'<to>'" + copied +
                                   "Up to date: s.py\n");
}

TEST_F(Batch, SignalsStopTheBoardAndSkipTheOtherCommands)
{
    auto words = RunScript("print('on')\nwhile True: print('x' * 70)\n");
    words.insert(words.end(), {"upload", "list"});
    for (const auto& [number, isRead] :
         {std::pair(SIGINT, true), {SIGTERM, true}, {SIGINT, false}, {SIGTERM, false}}) {
        SCOPED_TRACE(std::to_string(number) + (isRead ? "" : " while nobody reads"));
        BackgroundProgram editor(Editor(words), board.variables());
        ASSERT_TRUE(editor.WaitForOutput("on"));
        ASSERT_TRUE(isRead || WaitUntil([&] { return editor.IsPipeFull(); }));
        editor.Signal(number);
        EXPECT_TRUE(WaitUntil([&] { return editor.HasExited(); }, std::chrono::seconds(3)));
        EXPECT_FALSE(editor.WaitForOutput("ls")) << "the next command";
        EXPECT_EQ(editor.Status(), 128 + number);
        EXPECT_TRUE(board.IsAtPrompt());
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

TEST_F(Batch, SignalsThatAreIgnoredAtTheStartStayIgnoredExceptForThatOfChildren)
{
    auto words = Editor(RunScript("print('on')\nwhile True: pass\n"));
    words.insert(words.begin(), {"env", "--ignore-signal=HUP"});
    BackgroundProgram editor(words, board.variables());
    ASSERT_TRUE(editor.WaitForOutput("on"));
    editor.Signal(SIGHUP);
    editor.Signal(SIGTERM);
    EXPECT_EQ(editor.Status(), 128 + SIGTERM);

    words = Editor(RunScript("print('ran')\n"));
    words.insert(words.begin(), {"env", "--ignore-signal=CHLD"});
    EXPECT_EQ(RunProgram(words, board.variables()).output, "ran\r\n");
}

TEST_F(Batch, TheNameOfADocumentIsNotRunAsACommand)
{
    const auto before = fs::current_path();
    fs::current_path(local.path());
    for (const char* name : {"a b.py", "it's.py", "x;touch y.py", "$(touch y.py).py"}) {
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
    using File = std::pair<std::string, std::string>;
    for (const auto& [name, content] :
         {File("binary.py", EveryByte()), File("na\u00efve.py", std::string(200'000, '#'))}) {
        const auto file = local.Write(name, content);
        EXPECT_EQ(OutputOf({"--document", file, "--batch", "upload", "upload-as-main"}),
                  "cp " + file + " :" + name + "\ncp " + file + " :main.py\n");
        EXPECT_TRUE(ReadFile(board.files() / name) == content) << name;
        EXPECT_TRUE(ReadFile(board.files() / "main.py") == content) << name;
    }
    EXPECT_TRUE(Contains(OutputOf({"--batch", "list"}), "\n      200000 na\u00efve.py\n"));
    EXPECT_TRUE(OutputOf({"--batch", "status"}).starts_with(board.devicePath() + " "));
}

TEST_F(Batch, PromptsKeepTheBoardsStateUntilARestartAndMainRunsItsProgram)
{
    EXPECT_EQ(OutputOf({"--batch", "prompt=x = 'a'", "prompt=for c in 'bc':\n  print(x + c)",
                        "prompt=x", "restart", "prompt='x' in globals()", "main"}),
              "ab\r\nac\r\n'a'\r\nFalse\r\nquilp-editor: The board has no main.py.\n");
    const std::string tooLongForAWord(110'000, 'x');
    EXPECT_EQ(OutputOf({"--batch", "prompt=print(1)\n#" + tooLongForAWord}), "1\r\n");
    board.files().Write("main.py", "import time\nprint(__name__)\nwhile True: time.sleep(1)\n");
    EXPECT_EQ(OutputOf({"--batch", "main", "wait=1", "stop", "prompt=1"}), "__main__\r\n1\r\n");
}

TEST_F(Batch, ForwardsInputOfAnySizeAndItsEndToPrograms)
{
    auto words =
        Editor(RunScript("import sys\nn = 0\nfor line in sys.stdin:\n"
                         "  n += int(line)\n  if line == '7\\n':\n    break\n"
                         "print(n, sys.stdin.buffer.read(2))\n"
                         "try: input()\nexcept EOFError: print('end')\n"));
    std::string lines;
    for (int i = 0; i < 30'000; ++i) {
        lines += std::to_string(1'000'000 + i) + "\n";
    }
    const auto file = local.Write("input", lines + "7\n8\n");
    const std::string expected = std::to_string(30'000LL * 1'000'000 + 30'000LL * 29'999 / 2 + 7);
    words.insert(words.begin() + 1, "--input");
    local.Write("helper.py", "");
    const auto asks = local.Write("asks.py", "import helper\nprint(input())\n");
    EXPECT_EQ(RunProgram({"sh", "-c", "echo early | \"$@\"", "sh", words[0], "--input", "--mount",
                          local.path(), "--document", asks, "--batch", "run"},
                         board.variables())
                  .output,
              "early\r\nearly\r\n");
    for (const std::string& start : {"exec \"$@\" <" + file, "cat " + file + " | \"$@\""}) {
        Words line{"sh", "-c", start, "sh"};
        line.insert(line.end(), words.begin(), words.end());
        EXPECT_EQ(RunProgram(line, board.variables()).output, expected + " b'8\\r'\r\nend\r\n")
            << start;
    }
}

TEST_F(Batch, UsesTheGivenBoardAndMountsTheGivenFolder)
{
    local.Write("helper.py", "answer = 42\n");
    const auto script = local.Write("s.py", "import helper\nprint(helper.answer)\n");
    const BoardProcess other;
    EXPECT_EQ(OutputOf({"--board", other.link(), "--mount", local.path(), "--document", script,
                        "--batch", "run", "upload"}),
              "42\r\ncp " + script + " :s.py\n");
    EXPECT_TRUE(fs::exists(other.files() / "s.py"));
    EXPECT_EQ(OutputOf({"--board", local / "none", "--batch", "list"}),
              "mpremote: no device found\n");
}

TEST(Editor, EveryCommandLineHasItsMessageAndStatus)
{
    const TemporaryFolder local;
    const auto text = local.Write("notes.txt", "");
    const auto nonsense = local.Write("nonsense.so", "nonsense");
    const std::string hello = QUILP_SOURCE "/examples/hello.py";
    const struct {
        Words arguments;
        int status;
        std::string message;
    } rows[] = {
        {{"--virtual-board=" + local / "board", "--document", hello, "--batch", "run"},
         0,
         "line 5\r\nDone.\r\n"},
        {{"--document", hello, "--batch", "run"}, 0, "mpremote: no device found\n"},
        {{"--document", local / "no.py", "--batch", "run"}, 2, "no.py cannot be read: No such"},
        {{"--plugin", local / "no.so", "--batch", "help"}, 3, "no.so does not exist"},
        {{"--plugin", nonsense, "--batch", "help"}, 3, "cannot be loaded"},
        {{"--document", text, "--batch", "run"}, 1, "no Python document or target"},
        {{"--virtual-board=" + text, "--batch", "list"}, 1, "Not a directory"},
        {{"--mount", text, "--batch", "list"}, 2, "notes.txt is not a folder"},
        {{"--batch", "restart"}, 1, "the board could not be restarted"},
        {{"--batch", "prompt= "}, 1, "without a text to run"},
    };
    for (const auto& row : rows) {
        const auto result = RunProgram(Editor(row.arguments), {"QUILP_VIRTUAL_BOARD="});
        EXPECT_EQ(result.status, row.status) << result.output;
        EXPECT_TRUE(Contains(result.output, row.message)) << result.output;
    }
}

TEST(Editor, AVirtualBoardNeedsNeitherTmpdirNorAWritableCurrentFolder)
{
    const TemporaryFolder files;
    const auto result =
        RunProgram({"sh", "-c", "cd /proc && exec \"$0\" \"$@\"", QUILP_BIN "/quilp-editor",
                    "--virtual-board=" + files.path(), "--batch", "list"},
                   {"TMPDIR=/none"});
    EXPECT_EQ(result.status, 0) << result.output;
}

TEST(Editor, ExitsWhenOutputCannotBeWritten)
{
    const std::string program = "'" QUILP_BIN "/quilp-editor'";
    const std::string editor = program + " --batch help wait=60";
    const auto full = RunProgram({"sh", "-c", editor + " >/dev/full; echo $?"});
    EXPECT_EQ(full.output,
              "quilp-editor: cannot write to standard output: No space left on device\n1\n");
    const auto closed = RunProgram({"sh", "-c", "{ sleep 0.2; " + editor + "; } | true"});
    EXPECT_EQ(closed.output, "") << "a closed pipe is not an error";
    const auto help = RunProgram({"sh", "-c", program + " --help >/dev/full; echo $?"});
    EXPECT_EQ(help.output, full.output);
    const auto without = RunProgram({"sh", "-c", editor + " <&- >&- 2>&-; echo $?"});
    EXPECT_EQ(without.output, "1\n") << "no standard descriptors";
}

TEST(Editor, ExitsWhenTheDisplayCannotBeReached)
{
    const auto result =
        RunProgram(Editor({}), {"DISPLAY=:99999", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=xcb"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(Contains(result.output, "quilp-editor: cannot open a window")) << result.output;
}

TEST(Editor, ASecondSignalTerminatesItWhileThePluginHangs)
{
    BackgroundProgram editor(
        Editor({"--plugin", QUILP_TEST_BIN "/throwing_plugin.so", "--batch", "stop"}));
    ASSERT_TRUE(editor.WaitForOutput("hangs"));
    EXPECT_TRUE(WaitUntil([&] {
        editor.Signal(SIGINT);
        return editor.HasExited();
    }));
    EXPECT_EQ(editor.Status(), 128 + SIGINT);
}

TEST(Editor, OpensTheDeviceWindowAloneAndKeepsItsFrame)
{
    const TemporaryFolder bundle;
    const auto plugin = bundle / "quilp.so";
    fs::copy(QUILP_BUNDLE "/quilp.so", plugin);
    const auto tool = bundle.Write("Resources/mpremote/mpremote.py", "#!/bin/sh\n: >\"$0.ran\"\n");
    fs::permissions(tool, fs::perms::owner_all);
    fs::copy(QUILP_BUNDLE "/Resources/QuilpWindow.ui", bundle / "Resources");
    const Words variables{"QT_QPA_PLATFORM=offscreen", "XDG_RUNTIME_DIR=" + bundle.path(),
                          "XDG_CONFIG_HOME=" + bundle.path()};
    const auto settings = bundle / "quilp/plugins.settings";
    const auto open = "'" QUILP_BIN "/quilp-editor' --open-device-window --plugin " + plugin;
    Words ways{"exec "};
#ifndef __SANITIZE_THREAD__  // Its memory counts as files.
    ways.push_back("ulimit -f 0; exec ");
#endif
    for (const auto& prepare : ways) {
        fs::remove(tool + ".ran");
        BackgroundProgram editor({"sh", "-c", prepare + open}, variables);
        EXPECT_TRUE(WaitUntil([&] { return fs::exists(tool + ".ran"); })) << "no listing";
        editor.Signal(SIGTERM);
        EXPECT_TRUE(editor.WaitForExit(std::chrono::seconds(5)));
        EXPECT_EQ(editor.Status(), 128 + SIGTERM) << editor.output();
        EXPECT_EQ(Contains(editor.output(), "cannot be saved: File too large"),
                  prepare.starts_with("ulimit"));
        EXPECT_TRUE(ReadFile(settings).starts_with("QuilpWindowFrame -frame "));
        EXPECT_EQ(std::distance(fs::directory_iterator(bundle / "quilp"), {}), 1) << "a file left";
    }
}

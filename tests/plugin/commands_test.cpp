#include "commands.h"

#include "device_files.h"
#include "plugin_fixture.h"
#include "runnable.h"
#include "wait.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

class Commands : public PluginTest {
  protected:
    int done = 0;
    const std::function<void()> onDone = [this] { ++done; };
};

}  // namespace

TEST_F(Commands, TheRunnableFileIsFoundWithAsFewQueriesAsNeeded)
{
    using Language = std::uint32_t;
    const std::tuple<Language, bool, bool, Language, bool, const char*, const char*> rows[] = {
        {19, true, true, 19, true, "/d.py", "DocumentLanguage"},
        {0, false, false, 19, false, "", "DocumentLanguage HasProjectTarget HasCurrentTarget"},
        {0, true, true, 19, true, "/t",
         "DocumentLanguage HasProjectTarget CurrentTarget TargetLanguage"},
        {0, false, true, 7, false, "/t",
         "DocumentLanguage HasProjectTarget HasCurrentTarget CurrentTarget TargetLanguage"},
    };
    host.document = "/d.py";
    host.target = "/t";
    for (const auto& [language, project, current, targetLanguage, runnable, path, queries] : rows) {
        host.language = language;
        host.projectTarget = project;
        host.currentTarget = current;
        host.targetLanguage = targetLanguage;
        host.TakeLog();
        EXPECT_EQ(IsDocumentOrTargetRunnable(&host), runnable);
        EXPECT_EQ(host.TakeLog(), queries);
        EXPECT_EQ(RunnableDocumentOrTargeRef(&host).path(), path) << queries;
    }
}

TEST_F(Commands, EachRunsItsLineInANewShellAndForwardsOutputAndCompletion)
{
    const TemporaryFolder local;
    const auto link = local / "link";
    std::filesystem::create_directory_symlink(local.path(), link);
    const Strings files{"/a b", "/c"};
    const std::string board = "/dev/ttyACM0 e661 2e8a:0005 MicroPython Board";
    const std::string fixed = "/dev/cu.usbmodem1101 None 0000:0000 None None";
    const std::string port = "/dev/cu.usbmodem110 None 0000:0000 None None";
    const std::string error = "\"<stdin>\", \"<stdin>\"";
    const std::string other = "MicroPython usbmodem1101\n /dev/x MicroPython\n";
    const Strings pieces{error + "\n", other, "", board + "\r\n", fixed + "\n" + port, port + "\n"};
    const std::string withoutPort = error + "\n" + other + board + "\r\n" + fixed + "\n" + port;
    const std::string all = withoutPort + port + "\n";
    const std::string withPath = "/p/a b.py" + all.substr(std::strlen("\"<stdin>\""));
    Strings lines;
    const auto collect = [&](const std::string_view& line) { lines.emplace_back(line); };
    struct Row {
        std::string words;
        std::function<void()> act;
        std::string worksheet;
        Strings lines = {};
        int completions = 0;
    };
    const Row rows[] = {
        {" run /p/a b.py\n", [&] { EXPECT_TRUE(::Run(&host)); }, withPath},
        {" cp /p/a b.py :'a b.py'\n", [&] { Upload(&host, ""); }, all},
        {" cp /p/a b.py :'main.py'\n", [&] { Upload(&host, "main.py"); }, all},
        {" ls \n", [&] { List(&host); }, all},
        {" devs df \n", [&] { Status(&host); }, withoutPort},
        {" rm -r :'/a b'\n", [&] { DeleteOne(&host, "/a b", onDone); }, all, {}, 1},
        {" cp '/a b' :'/lib'\n",
         [&] { CopyToDevice(&host, files, "/lib", onDone); },
         host.Tool() + " cp '/a b' :'/lib'" + all,
         {},
         1},
        {" cp  -r '" + link + "' :'/'\n",
         [&] { CopyToDevice(&host, {link}, "/", onDone); },
         host.Tool() + " cp  -r '" + link + "' :'/'" + all,
         {},
         1},
        {" ls '/a b'\n",
         [&] { DirectoryListing(&host, "/a b", collect, onDone); },
         "",
         {error, "MicroPython usbmodem1101", " /dev/x MicroPython", board, fixed, port, port},
         1},
        {" devs \n", [&] { GetDeviceName(&host, collect, onDone); }, "", {board, fixed}, 1},
    };
    OpenPython("/p/a b.py");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words);
        row.act();
        EXPECT_EQ(shells::TakeCalls(), (Strings{"new Execute", RunLine(row.words)}));
        host.worksheet.clear();
        row.act();
        EXPECT_EQ(shells::TakeCalls(),
                  (Strings{"stop", "new Execute", "release", RunLine(row.words)}));
        lines.clear();
        std::ranges::for_each(pieces, shells::Print);
        EXPECT_EQ(host.worksheet, row.worksheet);
        EXPECT_EQ(lines, row.lines);
        EXPECT_EQ(done, 0);
        shells::Finish();
        EXPECT_EQ(std::exchange(done, 0), row.completions);
        Stop();
        shells::TakeCalls();
    }
}

TEST_F(Commands, StopStartsDisconnectAndForgetsTheShellWhichAResetKeeps)
{
    for (const std::string path : {"", "/p/a b.c"}) {
        host.document = path;
        gRunningCommand = "a.py";
        List(&host);
        shells::Finish();
        shells::TakeCalls();
        ResetShell();
        EXPECT_EQ(shells::TakeCalls(), Strings{"stop"});
        EXPECT_TRUE(Running());
        EXPECT_EQ(gRunningCommand, "a.py");
        Stop(&host);
        EXPECT_EQ(shells::TakeCalls(),
                  (Strings{"stop", "new Execute", "release", RunLine(" disconnect " + path + "\n"),
                           "stop", "release"}));
        EXPECT_FALSE(Running());
        EXPECT_EQ(gRunningCommand, "");
    }
    Stop();
    EXPECT_EQ(shells::TakeCalls(), Strings{}) << "there is no shell";
}

TEST_F(Commands, WithoutAFileNothingIsStarted)
{
    gRunningCommand = "a.py";
    EXPECT_FALSE(::Run(&host));
    EXPECT_EQ(gRunningCommand, "a.py");
    Upload(&host, "");
    Upload(&host, "main.py");
    CopyToDevice(&host, {}, "/", onDone);
    EXPECT_EQ(host.worksheet, "");
    DumpUpload(&host);
    EXPECT_EQ(host.worksheet, host.Tool() + " cp '<from>':'<to>'");
    EXPECT_EQ(shells::TakeCalls(), Strings{});
    EXPECT_EQ(done, 0);
}

TEST_F(Commands, DeletesTheLastPathFirstAndIsFreedWhenFinishedOrInterrupted)
{
    const auto completions = std::make_shared<int>(0);
    const auto count = [completions] { ++*completions; };
    Delete(&host, {"/a", "/b", "/c"}, count);
    for (const std::string path : {"/c", "/b", "/a"}) {
        EXPECT_EQ(TakeWords(), " rm -r :'" + path + "'\n");
        EXPECT_EQ(*completions, 0);
        shells::Finish();
    }
    EXPECT_EQ(*completions, 1);
    Delete(&host, {}, count);
    EXPECT_EQ(*completions, 2);
    EXPECT_EQ(shells::TakeCalls(), Strings{});
    EXPECT_EQ(completions.use_count(), 2) << "finished";

    Delete(&host, {"/a", "/b"}, count);
    List(&host);
    EXPECT_EQ(completions.use_count(), 2) << "interrupted";
    shells::TakeCalls();
    shells::Finish();
    EXPECT_EQ(shells::TakeCalls(), Strings{}) << "no deletion follows another command";
}

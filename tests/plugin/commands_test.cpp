#include "commands.h"

#include "device_files.h"
#include "plugin_fixture.h"
#include "runnable.h"
#include "wait.h"

#include <filesystem>

namespace {

class Commands : public PluginTest {
  protected:
    LineCallback Collect()
    {
        return [this](const std::string_view& line) { lines.emplace_back(line); };
    }
    std::function<void()> Done()
    {
        return [this] { ++done; };
    }

    Strings lines;
    int done = 0;
};

}  // namespace

TEST_F(Commands, WhatIsRunnableIsFoundWithAsFewQuestionsAsNeeded)
{
    struct Row {
        std::uint32_t language;
        bool project, current;
        std::uint32_t targetLanguage;
        bool runnable;
        const char* path;
        const char* questions;
    };
    const Row rows[] = {
        {19, true, true, 19, true, "/d.py", "DocumentLanguage"},
        {0, false, false, 19, false, "", "DocumentLanguage HasProjectTarget HasCurrentTarget"},
        {0, true, true, 19, true, "/t",
         "DocumentLanguage HasProjectTarget CurrentTarget TargetLanguage"},
        {0, false, true, 7, false, "/t",
         "DocumentLanguage HasProjectTarget HasCurrentTarget CurrentTarget TargetLanguage"},
    };
    host.document = "/d.py";
    host.target = "/t";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.questions);
        host.language = row.language;
        host.projectTarget = row.project;
        host.currentTarget = row.current;
        host.targetLanguage = row.targetLanguage;
        host.TakeLog();
        EXPECT_EQ(IsDocumentOrTargetRunnable(&host), row.runnable);
        EXPECT_EQ(host.TakeLog(), row.questions);
        EXPECT_EQ(RunnableDocumentOrTargeRef(&host).path(), row.path);
    }
}

TEST_F(Commands, EachStartsItsLineInANewShellAfterStoppingTheOld)
{
    const TemporaryFolder local;
    const auto link = local / "link";
    std::filesystem::create_directory_symlink(local.path(), link);
    struct Row {
        const char* name;
        std::function<void()> act;
        std::string words;
    };
    const Row rows[] = {
        {"Run", [&] { EXPECT_TRUE(::Run(&host)); }, " run /p/a b.py\n"},
        {"Upload", [&] { Upload(&host, ""); }, " cp /p/a b.py :'a b.py'\n"},
        {"Upload by name", [&] { Upload(&host, "main.py"); }, " cp /p/a b.py :'main.py'\n"},
        {"List", [&] { List(&host); }, " ls \n"},
        {"Status", [&] { Status(&host); }, " devs df \n"},
        {"DirectoryListing", [&] { DirectoryListing(&host, "/a b", {}, {}); }, " ls '/a b'\n"},
        {"DeleteOne", [&] { DeleteOne(&host, "/a b", {}); }, " rm -r :'/a b'\n"},
        {"CopyToDevice",
         [&] {
             CopyToDevice(&host, {"/a b", "/c"}, "/lib", {});
         },
         " cp '/a b' :'/lib'\n"},
        {"CopyToDevice of a folder", [&] { CopyToDevice(&host, {link}, "/", {}); },
         " cp  -r '" + link + "' :'/'\n"},
        {"GetDeviceName", [&] { GetDeviceName(&host, {}, {}); }, " devs \n"},
    };
    OpenPython("/p/a b.py");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        row.act();
        EXPECT_EQ(shells::TakeCalls(), (Strings{"new Execute", RunLine(row.words)}));
        row.act();
        EXPECT_EQ(shells::TakeCalls(),
                  (Strings{"stop", "new Execute", "release", RunLine(row.words)}));
        Stop();
        shells::TakeCalls();
    }
    host.bundle = nullptr;
    List(&host);
    EXPECT_EQ(shells::TakeCalls().back(), "run /mpremote/mpremote.py ls \n");
}

TEST_F(Commands, StopStartsDisconnectThenStopsAndForgets)
{
    for (const std::string path : {"", "/p/a b.c"}) {
        host.document = path;
        gRunningCommand = "a.py";
        List(&host);
        shells::TakeCalls();
        Stop(&host);
        EXPECT_EQ(shells::TakeCalls(),
                  (Strings{"stop", "new Execute", "release", RunLine(" disconnect " + path + "\n"),
                           "stop", "release"}));
        EXPECT_FALSE(Running());
        EXPECT_EQ(gRunningCommand, "");
    }
}

TEST_F(Commands, TheRunnerStopsTheShellAndForgetsItOnlyWhenToldTo)
{
    gRunningCommand = "a.py";
    ResetShell();
    EXPECT_EQ(gRunningCommand, "a.py");
    Stop();
    EXPECT_EQ(gRunningCommand, "");
    EXPECT_EQ(shells::TakeCalls(), Strings{}) << "there is no shell";

    OpenPython("/p/a.py");
    ::Run(&host);
    shells::TakeCalls();
    shells::Finish();
    EXPECT_TRUE(Running());
    ResetShell();
    EXPECT_EQ(shells::TakeCalls(), Strings{"stop"});
    EXPECT_TRUE(Running());
    EXPECT_EQ(gRunningCommand, "a.py");
    Stop();
    EXPECT_EQ(shells::TakeCalls(), (Strings{"stop", "release"}));
    EXPECT_FALSE(Running());
}

TEST_F(Commands, WithoutAFileNothingIsStarted)
{
    gRunningCommand = "a.py";
    EXPECT_FALSE(::Run(&host));
    EXPECT_EQ(gRunningCommand, "a.py");
    Upload(&host, "");
    Upload(&host, "main.py");
    CopyToDevice(&host, {}, "/", Done());
    EXPECT_EQ(host.worksheet, "");
    DumpUpload(&host);
    EXPECT_EQ(host.worksheet, host.Tool() + " cp '<from>':'<to>'");
    EXPECT_EQ(shells::TakeCalls(), Strings{});
    EXPECT_EQ(done, 0);

    OpenPython("");
    host.TakeLog();
    Upload(&host, "");
    EXPECT_EQ(host.TakeLog(), "DocumentLanguage DocumentRef DocumentLanguage DocumentRef");
    Upload(&host, "main.py");
    EXPECT_EQ(host.TakeLog(), "DocumentLanguage DocumentRef");
}

TEST_F(Commands, EachForwardsItsOutputWhereItBelongs)
{
    const std::string board = "/dev/ttyACM0 e661 2e8a:0005 MicroPython Board\r\n";
    const std::string fixed = "/dev/cu.usbmodem1101 None 0000:0000 None None\n";
    const std::string others = "MicroPython usbmodem1101\n /dev/x MicroPython\n";
    const std::string port = "/dev/ttyS0 None 0000:0000 None None\n";
    const Strings ports{port, board, fixed, others, port + board};
    struct Row {
        const char* name;
        std::function<void()> act;
        Strings pieces;
        std::string worksheet;
        Strings lines;
    };
    const Row rows[] = {
        {"List", [&] { List(&host); }, {"a\nb", "\r\n"}, "a\nb\r\n", {}},
        {"Run",
         [&] { ::Run(&host); },
         {"File \"<stdin>\", \"<stdin>\"\n", "\"<stdin>\" <stdin>\n"},
         "File /p/a.py, \"<stdin>\"\n/p/a.py <stdin>\n",
         {}},
        {"Status", [&] { Status(&host); }, ports, board + fixed + others + port + board, {}},
        {"DeleteOne", [&] { DeleteOne(&host, "/a", {}); }, {"error\n"}, "error\n", {}},
        {"CopyToDevice",
         [&] {
             CopyToDevice(&host, {"/a", "/b"}, "/lib", {});
         },
         {"error\n"},
         host.Tool() + " cp '/a' :'/lib'error\n",
         {}},
        {"DirectoryListing",
         [&] { DirectoryListing(&host, "/", Collect(), {}); },
         {"ls :\r\n 1 a\n", "", " 2 b"},
         "",
         {"ls :", " 1 a", " 2 b"}},
        {"GetDeviceName",
         [&] { GetDeviceName(&host, Collect(), {}); },
         ports,
         "",
         {board.substr(0, board.size() - 2), fixed.substr(0, fixed.size() - 1),
          board.substr(0, board.size() - 2)}},
    };
    OpenPython("/p/a.py");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        host.worksheet.clear();
        lines.clear();
        row.act();
        for (const auto& piece : row.pieces) {
            shells::Print(piece);
        }
        EXPECT_EQ(host.worksheet, row.worksheet);
        EXPECT_EQ(lines, row.lines);
    }
}

TEST_F(Commands, ACompletionIsForwardedOrDropped)
{
    const std::function<void()> operations[] = {
        [&] { Execute(&host, "line\n", {}, Done()); },
        [&] { DirectoryListing(&host, "/", Collect(), Done()); },
        [&] { DeleteOne(&host, "/a", Done()); },
        [&] { CopyToDevice(&host, {"/a"}, "/", Done()); },
        [&] { GetDeviceName(&host, Collect(), Done()); },
    };
    for (const auto& operation : operations) {
        done = 0;
        operation();
        EXPECT_EQ(done, 0);
        shells::Finish();
        EXPECT_EQ(done, 1);
        operation();
        List(&host);
        shells::Finish();
        EXPECT_EQ(done, 1) << "dropped by the next command";
    }
}

TEST_F(Commands, DeletesTheLastPathFirstAndEachAfterTheOneBefore)
{
    Delete(&host, {"/a", "/b", "/c"}, Done());
    for (const char* path : {"/c", "/b", "/a"}) {
        EXPECT_EQ(shells::TakeCalls().back(), RunLine(std::string(" rm -r :'") + path + "'\n"));
        EXPECT_EQ(done, 0);
        shells::Finish();
    }
    EXPECT_EQ(done, 1);
    EXPECT_EQ(shells::TakeCalls(), Strings{});
    Delete(&host, {}, Done());
    EXPECT_EQ(done, 2);
    EXPECT_EQ(shells::TakeCalls(), Strings{});
}

TEST_F(Commands, ADeletionThatHasEndedOrWasBrokenOffIsFreed)
{
    const auto captured = std::make_shared<int>();
    Delete(&host, {"/a"}, [captured] {});
    shells::Finish();
    EXPECT_EQ(captured.use_count(), 1) << "ended";
    Delete(&host, {"/a", "/b"}, [captured] {});
    EXPECT_EQ(captured.use_count(), 2);
    List(&host);
    EXPECT_EQ(captured.use_count(), 1) << "broken off";
    shells::TakeCalls();
    shells::Finish();
    EXPECT_EQ(shells::TakeCalls(), Strings{}) << "nothing follows the user's command";
}

#include "device_files.h"

#include "board_process.h"
#include "commands.h"
#include "recording_host.h"
#include "runner.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Lines = std::vector<std::string>;

class DeviceFiles : public testing::Test {
  protected:
    ~DeviceFiles() override { Stop(); }

    LineCallback Collect()
    {
        return [this](const std::string_view& line) { lines.emplace_back(line); };
    }
    std::function<void()> Done()
    {
        return [this] { ++done; };
    }

    Runtime runtime;
    RecordingHost host{runtime};
    Lines lines;
    int done = 0;
};

// With the real tool and a board.
class DeviceFilesOnBoard : public DeviceFiles {
  protected:
    DeviceFilesOnBoard()
    {
        host.UseRealTool();
        setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1);
    }
    ~DeviceFilesOnBoard() override { unsetenv("QUILP_VIRTUAL_BOARD"); }

    BoardProcess board;
};

}  // namespace

TEST_F(DeviceFiles, EachOperationSendsItsLineAndHandsOnItsOutput)
{
    DirectoryListing(&host, "/my lib", Collect(), Done());
    EXPECT_EQ(host.WorksheetWhenIdle(), "");
    EXPECT_EQ(lines, (Lines{"[ls]", "[/my lib]"}));

    DeleteOne(&host, "/a b", Done());
    EXPECT_EQ(host.WorksheetWhenIdle(), "[rm]\n[-r]\n[:/a b]\n");

    const TemporaryFolder local;
    const auto file = local.Write("a b.py", "");
    CopyToDevice(&host, {file, "/other"}, "/lib", Done());
    EXPECT_EQ(host.WorksheetWhenIdle(),
              host.toolLine() + " cp '" + file + "' :'/lib'[cp]\n[" + file + "]\n[:/lib]\n");
    CopyToDevice(&host, {local.path()}, "/", Done());
    EXPECT_EQ(host.WorksheetWhenIdle(), host.toolLine() + " cp  -r '" + local.path() +
                                            "' :'/'[cp]\n[-r]\n[" + local.path() + "]\n[:/]\n");
    EXPECT_EQ(done, 4);
    CopyToDevice(&host, {}, "/", Done());
    EXPECT_EQ(host.WorksheetWhenIdle(), "");
}

TEST_F(DeviceFiles, OnlyBoardsAreOfferedAsDevices)
{
    host.ToolSays(
        "/dev/ttyS0 None 0000:0000 None None\n"
        "/dev/ttyACM0 e661 2e8a:0005 MicroPython Board\r\n"
        "/dev/cu.usbmodem1101 None 0000:0000 None None\n"
        "MicroPython usbmodem1101\n"
        " /dev/x MicroPython\n");
    GetDeviceName(&host, Collect(), Done());
    EXPECT_EQ(host.WorksheetWhenIdle(), "");
    EXPECT_EQ(lines, (Lines{"/dev/ttyACM0 e661 2e8a:0005 MicroPython Board",
                            "/dev/cu.usbmodem1101 None 0000:0000 None None"}));
    lines.clear();
    Status(&host);
    EXPECT_EQ(host.WorksheetWhenIdle(),
              "[devs]\n[df]\n"
              "/dev/ttyACM0 e661 2e8a:0005 MicroPython Board\r\n"
              "/dev/cu.usbmodem1101 None 0000:0000 None None\n"
              "MicroPython usbmodem1101\n"
              " /dev/x MicroPython\n");
}

TEST_F(DeviceFiles, DeletesTheLastFirstAndEachAfterTheOneBefore)
{
    Delete(&host, {"/a", "/b", "/c"}, Done());
    EXPECT_EQ(done, 0);
    ASSERT_TRUE(WaitUntil([this] { return done == 1; }));
    EXPECT_EQ(host.WorksheetWhenIdle(),
              "[rm]\n[-r]\n[:/c]\n[rm]\n[-r]\n[:/b]\n[rm]\n[-r]\n[:/a]\n");
    Delete(&host, {}, Done());
    EXPECT_EQ(done, 1);  // By way of the rebinder.
    EXPECT_TRUE(WaitUntil([this] { return done == 2; }));
}

TEST_F(DeviceFiles, NothingIsKeptAliveByAChainThatHasEndedOrWasBrokenOff)
{
    const auto captured = std::make_shared<int>();
    Delete(&host, {"/a"}, [captured] {});
    ASSERT_TRUE(WaitUntil([&] { return captured.use_count() == 1; }));
    Delete(&host, {"/a", "/b"}, [captured] {});
    ASSERT_TRUE(WaitUntil([this] { return !runtime.IsIdle(); }));
    Stop();
    EXPECT_TRUE(WaitUntil([&] { return captured.use_count() == 1; }));
}

TEST_F(DeviceFiles, ACommandOfTheUsersEndsTheChainAtWhateverMoment)
{
    host.language = kPythonLanguage;
    host.document = "/p.py";
    // Before the first deletion, while it runs, and between its end and the next.
    for (const int deletionsBefore : {0, 1, 2}) {
        SCOPED_TRACE(deletionsBefore);
        Delete(&host, {"/a", "/b"}, Done());
        if (deletionsBefore == 1) {
            WaitUntil([this] { return !runtime.IsIdle(); });
        } else if (deletionsBefore == 2) {
            // The first ends while nobody looks; then its completion posts the next step.
            WaitUntil([this] { return host.worksheet.ends_with("[:/b]\n"); });
            std::shared_ptr<SimpleShell> shell = gShell;
            WaitUntil([&] { return runtime.IsIdle() || gShell != shell; });
        }
        ::Run(&host);
        const std::string before = std::exchange(host.worksheet, {});
        const std::string after = host.WorksheetWhenIdle();
        EXPECT_TRUE(after.ends_with("[run]\n[/p.py]\n")) << before << "--" << after;
        EXPECT_EQ(done, 0);
    }
}

TEST_F(DeviceFiles, UploadDoesNothingWithoutAFileAndTheTemplateRunsNothing)
{
    Upload(&host, "");
    Upload(&host, "main.py");
    DumpUpload(&host);
    EXPECT_FALSE(Running());
    EXPECT_EQ(host.worksheet, host.toolLine() + " cp '<from>':'<to>'");
}

TEST_F(DeviceFilesOnBoard, ListsCopiesAndDeletes)
{
    const TemporaryFolder local;
    std::string binary;
    for (int i = 0; i < 256; ++i) {
        binary += static_cast<char>(i);
    }
    local.Write("tree/sub/naïve name.bin", binary);
    local.Write("tree/empty", "");

    CopyToDevice(&host, {local / "tree"}, "/", Done());
    ASSERT_TRUE(WaitUntil([this] { return done == 1; }));
    EXPECT_EQ(ReadFile(board.files() / "tree/sub/naïve name.bin"), binary);
    EXPECT_TRUE(std::filesystem::exists(board.files() / "tree/empty"));

    DirectoryListing(&host, "/tree/sub", Collect(), Done());
    ASSERT_TRUE(WaitUntil([this] { return done == 2; }));
    EXPECT_EQ(lines, (Lines{"ls :/tree/sub", "         256 naïve name.bin"}));

    lines.clear();
    GetDeviceName(&host, Collect(), Done());
    ASSERT_TRUE(WaitUntil([this] { return done == 3; }));
    EXPECT_EQ(lines,
              Lines{board.devicePath() + " 0123456789ab f055:0001 MicroPython Virtual board"});

    host.worksheet.clear();
    Delete(&host, {"/tree", "/none"}, Done());
    ASSERT_TRUE(WaitUntil([this] { return done == 4; }));
    EXPECT_FALSE(std::filesystem::exists(board.files() / "tree"));
    EXPECT_NE(host.worksheet.find("rm :/none\n"), std::string::npos) << host.worksheet;
}

#include "device_files.h"

#include "board_process.h"
#include "commands.h"
#include "leaks.h"
#include "recording_host.h"
#include "runner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
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
    const auto link = local / "link";
    std::filesystem::create_directory_symlink(local.path(), link);
    CopyToDevice(&host, {link}, "/", Done());
    EXPECT_EQ(host.WorksheetWhenIdle(),
              host.toolLine() + " cp  -r '" + link + "' :'/'[cp]\n[-r]\n[" + link + "]\n[:/]\n");
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

TEST_F(DeviceFiles, ACommandOrAStopOfTheUsersEndsTheChainAtWhateverMoment)
{
    enum Moment { kBeforeTheFirst, kDuringTheFirst, kBetween, kAfterTheLast };
    host.language = kPythonLanguage;
    host.document = "/p.py";
    for (const bool stops : {false, true}) {
        for (const auto moment : {kBeforeTheFirst, kDuringTheFirst, kBetween, kAfterTheLast}) {
            SCOPED_TRACE(std::to_string(moment) + (stops ? " stop" : " run"));
            Stop();
            if (moment == kBeforeTheFirst) {
                host.HoldWork();
            }
            Delete(&host, moment == kAfterTheLast ? Lines{"/b"} : Lines{"/a", "/b"}, Done());
            if (moment != kBeforeTheFirst) {
                ASSERT_TRUE(WaitUntil([this] { return !runtime.IsIdle(); }));
                host.HoldWork();
            }
            if (moment == kBetween || moment == kAfterTheLast) {
                EXPECT_EQ(host.WorksheetWhenIdle(), "[rm]\n[-r]\n[:/b]\n");
            }
            stops ? Stop(&host) : static_cast<void>(::Run(&host));
            host.ReleaseWork();
            const std::string after = host.WorksheetWhenIdle();
            EXPECT_EQ(after.ends_with("[run]\n[/p.py]\n"), !stops) << after;
            EXPECT_EQ(after.find("[:/a]"), std::string::npos) << after;
            EXPECT_EQ(done, 0);
        }
    }
}

TEST_F(DeviceFiles, ADeletionIsNotTakenForOvertakenByWhatItStops)
{
    const auto threads = CurrentHoldings().threads;
    DirectoryListing(&host, "/", Collect(), [this] { GetDeviceName(&host, Collect(), {}); });
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (CurrentHoldings().threads > threads && std::chrono::steady_clock::now() < patience) {
        // The listing ends, and its end waits in the queue.
    }
    Delete(&host, {"/a"}, Done());
    EXPECT_TRUE(WaitUntil([this] { return done == 1; }));
}

TEST_F(DeviceFiles, UploadDoesNothingWithoutAFileAndTheTemplateRunsNothing)
{
    host.language = kPythonLanguage;  // With an empty reference.
    host.log.clear();
    Upload(&host, "");
    EXPECT_EQ(std::ranges::count(host.log, "DocumentRef"), 2);
    Upload(&host, "main.py");
    EXPECT_EQ(std::ranges::count(host.log, "DocumentRef"), 3);
    DumpUpload(&host);
    EXPECT_FALSE(Running());
    EXPECT_EQ(host.worksheet, host.toolLine() + " cp '<from>':'<to>'");
}

TEST_F(DeviceFilesOnBoard, ListsCopiesAndDeletes)
{
    const TemporaryFolder local;
    const std::string binary = EveryByte();
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

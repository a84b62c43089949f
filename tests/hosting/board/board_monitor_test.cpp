#include "board_monitor.h"

#include "wait.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

const BoardPort kPico{"/dev/ttyACM0", "Pico", "e661"};
const BoardPort kEsp{"/dev/ttyUSB0", "", "42"};

std::string NamedBoard()
{
    const char* const value = std::getenv("QUILP_BOARD");
    return value != nullptr ? value : "";
}

}  // namespace

#ifdef __linux__
TEST(BoardPorts, AreTheSerialDevicesOfUsb)
{
    const TemporaryFolder system;
    system.Write("usb1/1-2/idVendor", "2e8a\n");
    system.Write("usb1/1-2/product", "Pico\n");
    system.Write("usb1/1-2/serial", "e661\n");
    const auto add = [&](const std::string& name, const std::string& device) {
        fs::create_directories(system / device);
        fs::create_directories(system / ("tty/" + name));
        fs::create_directory_symlink(system / device, system / ("tty/" + name + "/device"));
    };
    add("ttyACM0", "usb1/1-2/1-2:1.0");
    add("ttyS0", "platform/serial8250");
    fs::create_directories(system / "tty/tty0");
    EXPECT_EQ(FindBoardPorts(system / "tty"), std::vector{kPico});
}
#endif

TEST(BoardMonitor, ShowsTheToolOnlyTheChosenBoard)
{
    std::vector<BoardPort> ports{kPico, kEsp};
    BoardMonitor monitor(
        "/no/program", "/no/folder", [&] { return ports; }, nullptr);
    int questions = 0;
    QObject::connect(&monitor, &BoardMonitor::ChoiceNeeded, [&] { ++questions; });
    EXPECT_TRUE(WaitUntil([&] { return questions == 1; }));
    EXPECT_EQ(NamedBoard(), "") << "the tool chooses";

    monitor.Choose(kEsp);
    const BoardPort moved{"/dev/ttyUSB3", "", "42"};
    const BoardPort other{"/dev/ttyUSB0", "", "43"};
    using Kind = BoardMonitor::Kind;
    const struct {
        const char* name;
        std::vector<BoardPort> ports;
        Kind kind;
        std::string named;
    } steps[] = {
        {"both", {kPico, kEsp}, Kind::Real, kEsp.node},
        {"gone", {kPico}, Kind::Missing, kEsp.node},
        {"its port has another board", {kPico, other}, Kind::Missing, "/dev/quilp-no-board"},
        {"at another port", {kPico, other, moved}, Kind::Real, moved.node},
    };
    for (const auto& step : steps) {
        ports = step.ports;
        EXPECT_TRUE(WaitUntil([&] {
            return monitor.board().kind == step.kind && NamedBoard() == step.named;
        })) << step.name
            << ": " << NamedBoard();
    }
    monitor.Choose(std::nullopt);
    EXPECT_EQ(NamedBoard(), "");
    EXPECT_EQ(questions, 1);
}

TEST(BoardMonitor, ABoardThatTheEnvironmentNamesIsNotTheUsersChoice)
{
    const auto ports = [] { return std::vector{kPico, kEsp}; };
    setenv("QUILP_BOARD", kPico.node.c_str(), 1);
    BoardMonitor monitor("/no/program", "/no/folder", ports, nullptr);
    EXPECT_EQ(monitor.userChoice(), std::nullopt);
    monitor.RestoreChoice(kEsp);
    EXPECT_EQ(monitor.userChoice(), kEsp) << "It would be forgotten.";
    EXPECT_EQ(monitor.board().port, kPico);
    EXPECT_EQ(NamedBoard(), kPico.node);
    monitor.Choose(kEsp);
    EXPECT_EQ(NamedBoard(), kEsp.node);
    monitor.Choose(std::nullopt);
    EXPECT_EQ(monitor.userChoice(), std::nullopt);
}

TEST(BoardMonitor, UsesTheVirtualBoardThatTheEnvironmentNames)
{
    const TemporaryFolder folder;
    const std::string link = folder.Write("port", "");
    setenv("QUILP_VIRTUAL_BOARD", link.c_str(), 1);
    BoardMonitor monitor(
        "/no/program", "/no/folder",
        [] {
            return std::vector{kPico, kEsp};
        },
        nullptr);
    using Kind = BoardMonitor::Kind;
    monitor.RestoreChoice(kEsp);
    EXPECT_EQ(monitor.board().kind, Kind::Virtual);
    EXPECT_TRUE(monitor.HasVirtualBoard());
    EXPECT_EQ(NamedBoard(), "") << "It would take precedence.";
    monitor.Choose(std::nullopt);
    EXPECT_EQ(monitor.board().port, kPico);
    EXPECT_EQ(std::getenv("QUILP_VIRTUAL_BOARD"), nullptr) << "The tool would see no other board.";

    setenv("QUILP_VIRTUAL_BOARD", "/no/link", 1);
    EXPECT_TRUE(WaitUntil([&] { return monitor.board().kind == Kind::Missing; }));
    monitor.DetachVirtualBoard();
    EXPECT_EQ(monitor.board().kind, Kind::Real);
}

TEST(BoardMonitor, AVirtualBoardThatPrintsWarningsStartsAndReportsItsEnd)
{
    const TemporaryFolder folder;
    const std::string program = folder.Write(
        "board", "#!/bin/sh\necho a warning\necho /dev/null\nread line <$6/go\necho broken\n");
    fs::permissions(program, fs::perms::owner_all);
    ASSERT_EQ(mkfifo((folder / "go").c_str(), 0600), 0);
    BoardMonitor monitor(
        program, folder.path(), [] { return std::vector<BoardPort>(); }, nullptr);
    QString message;
    QObject::connect(&monitor, &BoardMonitor::Failed,
                     [&](const QString& error) { message = error; });
    monitor.AttachVirtualBoard();
    EXPECT_TRUE(WaitUntil([&] { return monitor.board().kind == BoardMonitor::Kind::Virtual; }));
    folder.Write("go", "\n");
    EXPECT_TRUE(WaitUntil([&] { return !message.isEmpty(); }));
    EXPECT_EQ(message, "The virtual board has stopped: broken");
}

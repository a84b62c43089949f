#include "device_output.h"

#include "line_match.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using Entry = std::pair<std::string, std::string>;
using Device = std::tuple<std::string, std::string, std::string, std::string>;

const std::string kBoard = "MicroPython Board in FS mode";

}  // namespace

TEST(DeviceOutput, DirectoryLinesGiveSizeAndName)
{
    struct Row {
        const char* name;
        std::string line;
        std::optional<Entry> entry;
    };
    const Row rows[] = {
        {"file", "         139 boot.py\n", Entry{"139", "boot.py"}},
        {"directory", "           0 lib/\r\n", Entry{"0", "lib/"}},
        {"inner blank", "12  my file.txt", Entry{"12", "my file.txt"}},
        {"blank at the beginning is lost", "12    x", Entry{"12", "x"}},
        {"blanks at the end belong to the name", "12 x  \n", Entry{"12", "x  "}},
        {"only blanks for a name", "12   \n", Entry{"12", " "}},
        {"tabs", "\t7\tx\ty\n", Entry{"7", "x\ty"}},
        {"UTF-8 and quotes", "7 naïve 'x' \"y\"\n", Entry{"7", "naïve 'x' \"y\""}},
        {"a size of any length", std::string(40, '9') + " x", Entry{std::string(40, '9'), "x"}},
        {"a name of digits", "1 2", Entry{"1", "2"}},
        {"binary bytes", "1 \x01\xFF\x80", Entry{"1", "\x01\xFF\x80"}},
        {"carriage return alone", "1 x\r", Entry{"1", "x"}},
        {"header", "ls :\n", std::nullopt},
        {"empty", "", std::nullopt},
        {"line feed alone", "\n", std::nullopt},
        {"letters", "boot.py\n", std::nullopt},
        {"digits alone", "139\n", std::nullopt},
        {"no blank", "139boot.py", std::nullopt},
        {"negative", "-1 x", std::nullopt},
        {"two lines", "1 x\n2 y\n", std::nullopt},
        {"carriage return in the name", "1 x\ry", std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ParseDirLine(row.line), row.entry);
    }
}

TEST(DeviceOutput, DeviceLinesGiveNameNodeSerialNumberAndIds)
{
    const std::string node = "/dev/cu.usbmodem1101";
    const std::string uid = "e66118604b5a2c2f";
    const Device device{kBoard, node, uid, "2e8a:0005"};
    struct Row {
        const char* name;
        std::string line;
        std::optional<Device> device;
    };
    const Row rows[] = {
        {"board", node + " " + uid + " 2e8a:0005 " + kBoard, device},
        {"line ending", node + " " + uid + " 2e8a:0005 " + kBoard + "\r\n", device},
        {"several blanks", node + "  " + uid + "\t2e8a:0005  " + kBoard + "\n", device},
        {"upper case in the number", node + " E661 2e8a:0005 " + kBoard, std::nullopt},
        {"a word for the number", node + " None 2e8a:0005 " + kBoard, std::nullopt},
        {"upper case in the ids", node + " " + uid + " 2E8A:0005 " + kBoard, std::nullopt},
        {"another node", "COM3 " + uid + " 2e8a:0005 " + kBoard, std::nullopt},
        {"a node alone", "/dev/ " + uid + " 2e8a:0005 " + kBoard, std::nullopt},
        {"no description", node + " " + uid + " 2e8a:0005", std::nullopt},
        {"no ids", node + " " + uid + " " + kBoard, std::nullopt},
        {"a blank before", " " + node + " " + uid + " 2e8a:0005 " + kBoard, std::nullopt},
        {"two lines", node + " " + uid + " 2e8a:0005 a\nb\n", std::nullopt},
        {"empty", "", std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ParseDeviceLine(row.line), row.device);
    }
}

TEST(DeviceOutput, HostileLinesAreParsedOrSkippedInTime)
{
    const std::size_t size = 1'000'000;
    const std::string blanks(size, ' ');
    const std::string feeds(size, '\f');
    const std::string few(900, ' ');
    const auto begin = std::chrono::steady_clock::now();
    for (const std::string& line :
         {std::string(size, '7'), blanks, "1" + blanks, "1 " + blanks + "\r\r",
          "1" + blanks + "x\ry", "1" + feeds + "x\ry", std::string(size, '\n'),
          "1" + few + "x\ry"}) {
        EXPECT_LE(ParseDirLine(line).has_value(), line == "1" + blanks);
    }
    for (const std::string& line : {feeds, "x a a:a " + feeds + "\r\r", "x" + blanks + "a",
                                    "x a a:a" + blanks + "x\ry", std::string(size, 'a')}) {
        EXPECT_FALSE(ParseDeviceLine("/dev/" + line));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    const std::string name(size, 'n');
    EXPECT_EQ(ParseDirLine("1 " + name + "\r\n"), (Entry{"1", name}));
}

TEST(DeviceOutput, ALineForWhichTheEngineGivesUpDoesNotMatch)
{
    boost::smatch groups;
    const boost::regex hard("(?:a|aa|aaa)*b");
    EXPECT_THROW(boost::regex_match(std::string(200, 'a'), hard), std::runtime_error);
    EXPECT_FALSE(MatchesWholeLine(std::string(200, 'a'), groups, hard));
    EXPECT_TRUE(MatchesWholeLine("aab", groups, hard));
}

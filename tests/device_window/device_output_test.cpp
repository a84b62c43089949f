#include "device_output.h"

#include "line_match.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace std::string_literals;

using Entry = std::pair<std::string, std::string>;

TEST(DeviceOutput, DirectoryLinesGiveSizeAndName)
{
    const std::string digits(40, '9');
    const std::pair<std::string, Entry> rows[] = {
        {"         139 boot.py\n", {"139", "boot.py"}},
        {"           0 lib/\r\n", {"0", "lib/"}},
        {"12    my file  \n", {"12", "my file  "}},
        {"12   \n", {"12", " "}},
        {"\t7\tx\ty\r", {"7", "x\ty"}},
        {"7 naïve 'x' \"y\"", {"7", "naïve 'x' \"y\""}},
        {"1 \x01\xFF\x80", {"1", "\x01\xFF\x80"}},
        {digits + " x", {digits, "x"}},
    };
    for (const auto& [line, entry] : rows) {
        EXPECT_EQ(ParseDirLine(line), entry);
    }
    for (const char* line :
         {"ls :\n", "", "\n", "boot.py\n", "139\n", "139boot.py", "-1 x", "1 x\n2 y\n", "1 x\ry"}) {
        EXPECT_FALSE(ParseDirLine(line)) << line;
    }
}

TEST(DeviceOutput, DeviceLinesGiveNameNodeSerialNumberAndIds)
{
    const std::string start = "/dev/cu.usbmodem1101 e66118604b5a2c2f";
    const std::tuple device{"MicroPython Board"s, "/dev/cu.usbmodem1101"s, "e66118604b5a2c2f"s,
                            "2e8a:0005"s};
    for (const char* end : {" 2e8a:0005 MicroPython Board", " 2e8a:0005 MicroPython Board\r\n",
                            "\t2e8a:0005  MicroPython Board\n"}) {
        EXPECT_EQ(ParseDeviceLine(start + end), device);
    }
    for (const std::string& line : {
             std::string(),
             "/dev/ttyS0 E661 2e8a:0005 Board"s,
             "/dev/ttyS0 None 2e8a:0005 Board"s,
             "COM3 e661 2e8a:0005 Board"s,
             "/dev/ e661 2e8a:0005 Board"s,
             " " + start + " 2e8a:0005 Board",
             start + " 2E8A:0005 Board",
             start + " 2e8a:0005",
             start + " Board",
             start + " 2e8a:0005 a\nb\n",
         }) {
        EXPECT_FALSE(ParseDeviceLine(line)) << line;
    }
}

TEST(DeviceOutput, HostileLinesAreParsedOrSkippedInTime)
{
    const std::size_t size = 200'000;
    const std::string spaces(size, ' ');
    const std::string feeds(size, '\f');
    const std::string name(size, 'n');
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ParseDirLine("1 " + name + "\r\n"), (Entry{"1", name}));
    EXPECT_TRUE(ParseDirLine("1" + spaces));
    for (const std::string& line :
         {std::string(size, '7'), spaces, "1 " + spaces + "\r\r", "1" + spaces + "x\ry",
          "1" + feeds + "x\ry", std::string(size, '\n'), "1" + std::string(900, ' ') + "x\ry"}) {
        EXPECT_FALSE(ParseDirLine(line));
    }
    for (const std::string& line : {feeds, "x a a:a " + feeds + "\r\r", "x" + spaces + "a",
                                    "x a a:a" + spaces + "x\ry", std::string(size, 'a')}) {
        EXPECT_FALSE(ParseDeviceLine("/dev/" + line));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST(DeviceOutput, ALineThatIsTooComplexForTheEngineDoesNotMatch)
{
    boost::smatch groups;
    const boost::regex hard("(?:a|aa|aaa)*b");
    EXPECT_THROW(boost::regex_match(std::string(200, 'a'), hard), std::runtime_error);
    EXPECT_FALSE(MatchesWholeLine(std::string(200, 'a'), groups, hard));
    EXPECT_TRUE(MatchesWholeLine("aab", groups, hard));
}

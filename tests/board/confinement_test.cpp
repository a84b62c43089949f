#include "board_process.h"

#include <gtest/gtest.h>

#include <filesystem>

// A hostile program on the virtual board.
TEST(Confinement, NoProgramReachesTheComputer)
{
    const TemporaryFolder outside;
    outside.Write("secret", "secret");
    outside.Write("secret.py", "");
    const BoardProcess board;
    std::filesystem::create_symlink(outside / "secret", board.files() / "file");
    std::filesystem::create_symlink(outside.path(), board.files() / "folder");
    const auto program = outside.Write(
        "hostile.py", "OUTSIDE = '" + outside.path() + "'; BOARD = '" + board.files().path() +
                          "'\n" + ReadFile(QUILP_SOURCE "/tests/board/hostile.py"));
    EXPECT_EQ(board.Tool({"run", program}).output, "42 attempts\r\n");
    EXPECT_EQ(ReadFile(outside / "secret"), "secret");
    EXPECT_FALSE(std::filesystem::exists(outside / "created"));
    EXPECT_EQ(board.Tool({"exec", "print('works')"}).output, "works\r\n");
}

TEST(Confinement, TheFlashIsNoLargerThanItSays)
{
    const BoardProcess board;
    const TemporaryFolder local;
    const auto large = local.Write("large", std::string(1 << 20, 'x'));
    const auto program = local.Write("fill.py", R"(
import json, os
def fails(function, *arguments):
    try:
        function(*arguments)
    except OSError as error:
        return error.errno == 28
def fill(step):
    try:
        while True: step()
    except OSError as error:
        return error.errno == 28
full = open('full', 'wb')
print(fill(lambda: full.write(bytes(65536))), fill(lambda: full.write(b'x')))
print(os.stat('full')[6], os.statvfs('/')[3])
print(fails(open, 'new', 'w'), fails(os.mkdir, 'new'), fails(json.dump, 'x', open('full', 'a')))
full.close()
with open('full', 'r+b') as file:
    print(file.write(b'in place'), file.seek(16 << 20), fails(file.write, b'x'))
with open('full', 'wb') as file:
    while file.tell() < 16000000: file.write(bytes(64000))
names = iter(range(5000))
print(fill(lambda: open(str(next(names)), 'w').close()), fill(lambda: os.mkdir('new')))
for name in ['full'] + list(range(next(names) - 1)):
    os.remove(str(name))
file = open('beyond', 'w')
file.seek(17 << 20)
print(fails(file.write, 'x'), file.seek(15 << 20), file.write('x'), os.statvfs('/')[3])
open('beyond', 'w').close()
os.rename('beyond', 'again')
print(os.statvfs('/')[3])
with open('again', 'ab') as file:
    for _ in range(15 << 4): file.write(bytes(65536))
)");
    EXPECT_EQ(board.Tool({"run", program}).output,
              "True True\r\n16773120 0\r\nTrue True True\r\n8 16777216 True\r\nTrue True\r\n"
              "True 15728640 1 254\r\n4094\r\n");
    EXPECT_NE(board.Tool({"cp", large, ":large"}).status, 0);
    EXPECT_LE(std::filesystem::file_size(board.files() / "large"), 1U << 20);
    EXPECT_NE(board.Tool({"df"}).output.find("<Flash>    16777216"), std::string::npos);
}

// Only few files may be open at once.
TEST(Confinement, DirectoriesMayBeNestedDeeply)
{
    const BoardProcess board;
    const std::string program = R"(
import os
for depth in range(60):
    os.mkdir('d')
    os.chdir('d')
open('file', 'w').close()
print(os.statvfs('/')[2] - os.statvfs('/')[3])
)";
    EXPECT_EQ(board.Tool({"exec", program}).output, "62\r\n");
    EXPECT_EQ(board.Tool({"touch", ":new"}).status, 0);
}

TEST(Confinement, AProgramThatGetsAroundTheFileSystemOrTheProtocolIsReset)
{
    const BoardProcess board;
    const std::pair<std::string, std::string> rows[] = {
        {"import sys\ndel sys.modules['vfs']\nimport vfs\nposix = vfs.VfsPosix()\n"
         "for i in range(3):\n file = posix.open('" +
             board.files().path() +
             "/%d' % i, 'wb')\n file.seek((16 << 20) - 1)\n file.write(b'x')\nwhile True: pass",
         "the board's files are larger than its flash"},
        {"open(3, 'wb').write(b'N0000')\nwhile True: pass", "the interpreter has exited"}};
    for (const auto& [program, reason] : rows) {
        const auto result = board.Tool({"exec", program});
        EXPECT_NE(result.output.find(reason), std::string::npos) << result.output;
        EXPECT_EQ(board.Tool({"exec", "print('works')"}).output, "works\r\n");
    }
}

TEST(Confinement, AProgramThatResetsTheBoardAgainAndAgainDoesNotUseTheDiskUp)
{
    const BoardProcess board;
    board.files().Write("boot.py",
                        "import machine, os, sys\ndel sys.modules['vfs']\nimport vfs\n"
                        "file = vfs.VfsPosix().open('" +
                            board.files().path() +
                            "/%d' % len(os.listdir()), 'wb')\n"
                            "file.seek((16 << 20) - 1)\nfile.write(b'x')\nmachine.reset()");
    board.Tool({"reset"});
    const auto countFiles = [&] {
        return std::distance(std::filesystem::directory_iterator(board.files().path()), {});
    };
    EXPECT_TRUE(WaitUntil([&] { return countFiles() > 2; }));
    // Each reset opens another device.
    EXPECT_TRUE(WaitUntil([&] {
        BoardLine line(board.link());
        line.Send("\r");
        return line.ReadTo(">>> ", std::chrono::milliseconds(200)).ends_with(">>> ");
    })) << countFiles();
}

TEST(Confinement, ProgramsHaveAsMuchMemoryAsTheUserChose)
{
    const TemporaryFolder folder;
    const std::string link = folder / "port";
    for (const auto& [size, kibibytes] : {std::pair("256K", 256), {"1M", 1024}}) {
        BackgroundProgram board(
            {QUILP_BIN "/virtual-board", "--heap", size, "--link", link, folder / "files"});
        ASSERT_TRUE(board.WaitForOutput("/dev/"));
        const auto result = RunProgram(
            {QUILP_MPREMOTE, "exec", "import gc; gc.collect(); print(gc.mem_free() // 1024)"},
            {"QUILP_VIRTUAL_BOARD=" + link});
        EXPECT_NEAR(std::stoi(result.output), kibibytes, 16) << size;
    }
}

#include "subprocess.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(Installation, RunsAfterItWasStagedAndMoved)
{
    const TemporaryFolder local;
    const auto installed =
        RunProgram({QUILP_CMAKE, "--install", QUILP_BUILD, "--strip", "--prefix", "/usr"},
                   {"DESTDIR=" + local / "stage"});
    ASSERT_EQ(installed.status, 0) << installed.output;
    std::filesystem::rename(local / "stage/usr", local / "there");
    const auto script = local.Write("answer.py", "print(6 * 7)\n");
    const auto result =
        RunProgram({local / "there/bin/quilp-editor", "--virtual-board=" + local / "board",
                    "--document", script, "--batch", "run"});
    EXPECT_EQ(result.output, "42\r\n");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(local / "there")) {
        EXPECT_FALSE(entry.is_symlink()) << entry.path();
        if (entry.is_regular_file()) {
            EXPECT_EQ(ReadFile(entry.path()).find(QUILP_SOURCE "/build"), std::string::npos)
                << entry.path();
        }
    }
}

TEST(Installation, AllVersionsAreTheSame)
{
    for (const std::string program : {"quilp-editor", "virtual-board"}) {
        const auto result = RunProgram({QUILP_BIN "/" + program, "--version"});
        EXPECT_EQ(result.output, program + " " QUILP_VERSION "\n");
    }
    const std::string packaging = QUILP_SOURCE "/packaging/";
    EXPECT_TRUE(ReadFile(packaging + "debian/changelog").starts_with("quilp (" QUILP_VERSION ") "));
    const auto metainfo = ReadFile(packaging + "invalid.quilp.editor.metainfo.xml");
    const auto newest = metainfo.find("<release version=");
    EXPECT_EQ(metainfo.find("<release version=\"" QUILP_VERSION "\""), newest);
}

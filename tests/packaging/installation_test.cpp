#include "subprocess.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

// What an installation under `prefix` says.
ProgramResult Install(const std::string& prefix, const std::vector<std::string>& variables = {})
{
    return RunProgram({QUILP_CMAKE, "--install", QUILP_BUILD, "--strip", "--prefix", prefix},
                      variables);
}

ProgramResult RunOnVirtualBoard(const std::string& prefix, const TemporaryFolder& local)
{
    const auto script = local.Write("answer.py", "print(6 * 7)\n");
    return RunProgram({prefix + "/bin/quilp-editor", "--virtual-board=" + local / "board",
                       "--document", script, "--batch", "run"});
}

}  // namespace

TEST(Installation, RunsFromWhereItWasMovedTo)
{
    const TemporaryFolder local;
    const auto installed = Install(local / "here");
    ASSERT_EQ(installed.status, 0) << installed.output;
    std::filesystem::rename(local / "here", local / "there");
    const auto result = RunOnVirtualBoard(local / "there", local);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "42\r\n");
}

TEST(Installation, CanBeStagedInAnotherFolder)
{
    const TemporaryFolder local;
    const auto installed = Install("/usr", {"DESTDIR=" + local / "stage"});
    ASSERT_EQ(installed.status, 0) << installed.output;
    EXPECT_EQ(RunOnVirtualBoard(local / "stage/usr", local).output, "42\r\n");
}

TEST(Installation, RefersToNoFileOfTheBuildTree)
{
    const TemporaryFolder local;
    ASSERT_EQ(Install(local / "here").status, 0);
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(local / "here")) {
        EXPECT_FALSE(entry.is_symlink()) << entry.path();
        if (entry.is_regular_file()) {
            ++files;
            EXPECT_EQ(ReadFile(entry.path()).find(QUILP_SOURCE "/build"), std::string::npos)
                << entry.path();
        }
    }
    EXPECT_GT(files, 10);
}

TEST(Installation, EverythingTellsTheSameVersion)
{
    for (const std::string program : {"quilp-editor", "virtual-board"}) {
        const auto result = RunProgram({QUILP_BIN "/" + program, "--version"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, program + " " QUILP_VERSION "\n");
    }
    const std::string packaging = QUILP_SOURCE "/packaging/";
    EXPECT_TRUE(ReadFile(packaging + "debian/changelog").starts_with("quilp (" QUILP_VERSION ") "));
    const auto metainfo = ReadFile(packaging + "invalid.quilp.editor.metainfo.xml");
    const auto release = metainfo.find("<release version=\"" QUILP_VERSION "\"");
    EXPECT_NE(release, std::string::npos);
    EXPECT_EQ(release, metainfo.find("<release version="));
}

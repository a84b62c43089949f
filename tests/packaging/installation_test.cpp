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
    const auto tool = RunProgram({local / "there/lib/quilp/bin/mpremote", "--version"});
    EXPECT_TRUE(tool.output.starts_with("mpremote ")) << tool.output;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(local / "there")) {
        EXPECT_FALSE(entry.is_symlink() && read_symlink(entry.path()).is_absolute())
            << entry.path();
        if (entry.is_regular_file()) {
            EXPECT_EQ(ReadFile(entry.path()).find(QUILP_SOURCE "/build"), std::string::npos)
                << entry.path();
        }
        if (entry.path().extension() == ".so") {
            const auto libraries = RunProgram({"ldd", entry.path()}).output;
            EXPECT_EQ(libraries.find("not found"), std::string::npos) << entry.path() << libraries;
        }
    }
}

TEST(Installation, ProgramsAndLibrariesAreHardened)
{
    const auto headers = [](const std::string& file) {
        return RunProgram({"readelf", "-hldW", "--dyn-syms", QUILP_BUILD "/" + file}).output;
    };
    for (const std::string file : {"bin/quilp-editor", "bin/virtual-board", "lib/libquilp_kit.so",
                                   "lib/quilp/Quilp.bundle/quilp.so"}) {
        const auto text = headers(file);
        for (const std::string part : {"DYN (", "GNU_RELRO", "BIND_NOW", "__stack_chk_fail@"}) {
            EXPECT_NE(text.find(part), std::string::npos) << file << " without " << part;
        }
    }
    EXPECT_NE(headers("bin/quilp-editor").find("_chk@GLIBC"), std::string::npos)
        << "_FORTIFY_SOURCE";
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

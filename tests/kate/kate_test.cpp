// The real Kate with the plug-in, under a display and a session bus of its own. A second plug-in
// does what a user does (driver.cpp).

#include "board_process.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>

namespace {

namespace fs = std::filesystem;

// Qt's plug-in folder in the build tree; empty if the plug-in is not built.
#ifdef QUILP_KATE_PLUGINS
const std::string kPlugins = QUILP_KATE_PLUGINS;
#else
const std::string kPlugins;
#endif

constexpr const char* kPrograms[] = {"kate", "xvfb-run", "dbus-run-session"};

bool HasProgram(const std::string& name)
{
    return std::system(("command -v " + name + " >/dev/null").c_str()) == 0;
}

// The processes whose environment names the folder, but not this one.
std::vector<std::string> ProcessesOf(const std::string& folder)
{
    std::vector<std::string> found;
    for (const auto& process : fs::directory_iterator("/proc")) {
        const std::string path = process.path();
        if (ReadFile(path + "/environ").find("HOME=" + folder) != std::string::npos) {
            found.push_back(ReadFile(path + "/cmdline"));
        }
    }
    return found;
}

class Kate : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override
    {
        if (kPlugins.empty()) {
            GTEST_SKIP() << "The plug-in for Kate is not built.";
        }
        for (const auto* const program : kPrograms) {
            if (!HasProgram(program)) {
                GTEST_SKIP() << program << " is not installed.";
            }
        }
        fs::create_directories(home_ / ".local/share/kate");
        fs::permissions(home_.path(), fs::perms::owner_all);
        home_.Write(".local/share/kate/anonymous.katesession",
                    "[Kate Plugins]\nkatequilpplugin=true\nkatetestdriver=true\n");
    }

    std::vector<std::string> Variables(const std::string& scenario) const
    {
        auto variables = board_.variables();
        const std::string plugins = kPlugins + ":" QUILP_TEST_BIN "/plugins";
        const std::string home = home_.path();
        for (const auto& variable :
             {"HOME=" + home, "XDG_RUNTIME_DIR=" + home, "XDG_CONFIG_HOME=" + home + "/.config",
              "XDG_DATA_HOME=" + home + "/.local/share", "XDG_STATE_HOME=" + home + "/.local/state",
              "QT_PLUGIN_PATH=" + plugins, "QUILP_TEST_SCENARIO=" + scenario,
              std::string("QT_QPA_PLATFORM=xcb")}) {
            variables.push_back(variable);
        }
        return variables;
    }

    TemporaryFolder home_;
    BoardProcess board_{{{"boot.py", ""}}};
};

TEST_P(Kate, WorksForAUserAndLeavesNoProcessBehind)
{
    const std::string flood = "n = 0\nwhile True:\n    n += 1\n    print('flood', n)\n";
    const bool usesTraceback = std::string_view(GetParam()) == "RunAndBrowse";
    const std::string document = home_.Write(
        "a b.py", usesTraceback ? ReadFile(QUILP_SOURCE "/examples/traceback.py") : flood);
    // Without the option, newer versions of Kate leave the terminal and exit at once.
    const auto kate =
        RunProgram({"xvfb-run", "-a", "dbus-run-session", "--", "kate", "--block", "-n", document},
                   Variables(GetParam()));
    EXPECT_EQ(kate.status, 0) << kate.output;
    EXPECT_NE(kate.output.find("driver: done"), std::string::npos) << kate.output;
    EXPECT_TRUE(WaitUntil([&] { return ProcessesOf(home_.path()).empty(); }))
        << testing::PrintToString(ProcessesOf(home_.path()));
    EXPECT_TRUE(board_.IsAtPrompt()) << "The board was not stopped.";
    if (std::string_view(GetParam()) == "CloseWindows") {
        const std::string settings = ReadFile(home_ / ".config/katerc");
        EXPECT_NE(settings.find("PromptHistory='first','second'\n"), std::string::npos) << settings;
    }
}

INSTANTIATE_TEST_SUITE_P(, Kate,
                         testing::Values("RunAndBrowse", "EndInFlood", "UnloadAndReload",
                                         "CloseWindows"),
                         [](const auto& scenario) { return std::string(scenario.param); });

}  // namespace

#include "commands.h"

#include "recording_host.h"
#include "runnable.h"
#include "runner.h"

#include <gtest/gtest.h>

namespace {

using Log = std::vector<std::string>;

class Commands : public testing::Test {
  protected:
    ~Commands() override { Stop(); }

    void OpenPython(const std::string& path)
    {
        host.language = kPythonLanguage;
        host.document = path;
    }

    Runtime runtime;
    RecordingHost host{runtime};
};

}  // namespace

TEST_F(Commands, WhatIsRunnableIsFoundWithAsFewQuestionsAsNeeded)
{
    struct Row {
        const char* name;
        std::uint32_t language;
        bool project, current;
        std::uint32_t targetLanguage;
        bool runnable;
        Log questions;
        std::string path;
    };
    const Row rows[] = {
        Row("Python before a target", 19, true, true, 19, true, Log{"DocumentLanguage"}, "/d.py"),
        Row("nothing", 0, false, false, 19, false,
            Log{"DocumentLanguage", "HasProjectTarget", "HasCurrentTarget"}, ""),
        Row("project target", 0, true, true, 19, true,
            Log{"DocumentLanguage", "HasProjectTarget", "CurrentTarget", "TargetLanguage"}, "/t"),
        Row("current target, not Python", 0, false, true, 7, false,
            Log{"DocumentLanguage", "HasProjectTarget", "HasCurrentTarget", "CurrentTarget",
                "TargetLanguage"},
            "/t"),
    };
    host.document = "/d.py";
    host.target = "/t";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        host.language = row.language;
        host.projectTarget = row.project;
        host.currentTarget = row.current;
        host.targetLanguage = row.targetLanguage;
        host.log.clear();
        EXPECT_EQ(IsDocumentOrTargetRunnable(&host), row.runnable);
        EXPECT_EQ(host.log, row.questions);
        EXPECT_EQ(RunnableDocumentOrTargeRef(&host).path(), row.path);
    }
}

TEST_F(Commands, RunSendsTheBarePath)
{
    OpenPython("/p/a b.py");
    EXPECT_TRUE(::Run(&host));
    EXPECT_EQ(gRunningCommand, "a b.py");
    EXPECT_EQ(host.WorksheetWhenIdle(), "[run]\n[/p/a]\n[b.py]\n");
    EXPECT_TRUE(Running());
    EXPECT_EQ(gRunningCommand, "a b.py");
}

TEST_F(Commands, RunWithNothingRunnableLeavesEverythingAsItIs)
{
    OpenPython("/p/blink.py");
    ::Run(&host);
    host.WorksheetWhenIdle();
    host.language = 0;
    const auto shell = gShell;
    EXPECT_FALSE(::Run(&host));
    EXPECT_EQ(gShell, shell);
    EXPECT_EQ(gRunningCommand, "blink.py");
}

TEST_F(Commands, RunShowsThePathForTheFirstAnonymousScriptOfEachPiece)
{
    OpenPython("/p/a.py");
    host.ToolSays("  File \"<stdin>\", line 1\r\n  File \"<stdin>\", \"<stdin>\"\r\n<stdin>\r\n");
    ::Run(&host);
    EXPECT_EQ(
        host.WorksheetWhenIdle(),
        "[run]\n[/p/a.py]\n  File /p/a.py, line 1\r\n  File /p/a.py, \"<stdin>\"\r\n<stdin>\r\n");
}

TEST_F(Commands, StopForgetsTheShellAndTheName)
{
    OpenPython("/p/a.py");
    ::Run(&host);
    host.log.clear();
    Stop(&host);
    EXPECT_EQ(host.log, Log{"DocumentRef"});  // Whatever was run.
    EXPECT_FALSE(Running());
    EXPECT_EQ(gRunningCommand, "");
    // The tool may have been stopped before or after it printed its words, but not in the middle.
    const std::string worksheet = host.WorksheetWhenIdle();
    EXPECT_TRUE(worksheet.empty() || worksheet.starts_with("[run]\n")) << worksheet;
}

TEST_F(Commands, ExecuteReplacesWhatRunsAndDropsItsCompletion)
{
    bool firstDone = false;
    bool secondDone = false;
    Execute(
        &host, QUILP_TEST_BIN "/misbehave flood\n", [](auto...) {}, [&] { firstDone = true; });
    const auto first = gShell;  // Stopped, not only released.
    Execute(&host, MPRemoteExecutable(&host) + " ls \n", {}, [&] { secondDone = true; });
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(host.WorksheetWhenIdle(), "[ls]\n");
    EXPECT_FALSE(firstDone);
    EXPECT_TRUE(secondDone);
}

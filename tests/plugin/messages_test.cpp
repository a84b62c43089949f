#include "plugin_fixture.h"
#include "quilp_window.h"

#include <dlfcn.h>

#include <algorithm>

namespace {

class Messages : public PluginTest {
  protected:
    std::int32_t Command(const char* name)
    {
        host.commandName = name;
        return PluginMain(103, &host);
    }
};

}  // namespace

TEST_F(Messages, LoadAndRegisterAnswerTheHost)
{
    EXPECT_EQ(PluginMain(1, &host), 1);
    EXPECT_EQ(host.loadReply[0], 19);
    EXPECT_EQ(host.loadReply[1], 5);
    EXPECT_EQ(PluginMain(2, &host), 1);
    EXPECT_EQ(host.log,
              "command QuilpRun: Run Python source on attached Micro Python device "
              "command QuilpStop: Stop Running on Micro Python Device "
              "command QuilpUpload: Upload Python source on attached Micro Python device "
              "command QuilpUploadAsMain: Upload Python source on attached Micro Python device "
              "as main.py "
              "command QuilpList: List the contents of Micro Python device "
              "key QuilpWindowFrame");
    EXPECT_STREQ(PluginHelp(), "Run on micropython capable devices.\nWIP.\n");
}

TEST_F(Messages, TheModuleExportsItsNamesUndecorated)
{
    void* const module = dlopen(QUILP_BUNDLE "/quilp.so", RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    for (const char* name : {"PluginMain", "PluginHelp", "gShell", "gRunningCommand"}) {
        EXPECT_NE(dlsym(module, name), nullptr) << name;
    }
    dlclose(module);
}

TEST_F(Messages, UnknownMessagesAndNamesDoNothing)
{
    for (const int message : {102, 3, 0, -1, 99, 401}) {
        EXPECT_EQ(PluginMain(message, &host), 0) << message;
    }
    for (const char* name : {"", "QuilpRu", "QuilpRunX", "quilprun"}) {
        EXPECT_EQ(Command(name), 0) << name;
    }
    EXPECT_EQ(Command(nullptr), 0);
    EXPECT_EQ(host.log, "");
    EXPECT_EQ(shells::TakeCalls(), Strings{});
}

TEST_F(Messages, AKnownCommandIsAcknowledgedAndRunsOnlyWhatIsRunnable)
{
    struct Row {
        const char* name;
        std::string words;
        bool needsFile;
    };
    const Row rows[] = {
        {"QuilpRun", " run /p/blink.py\n", true},
        {"QuilpUpload", " cp /p/blink.py :'blink.py'\n", true},
        {"QuilpUploadAsMain", " cp /p/blink.py :'main.py'\n", true},
        {"QuilpList", " ls \n", false},
        {"QuilpStop", " disconnect /p/blink.py\n", false},
    };
    host.document = "/p/blink.py";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const bool isPython : {true, false}) {
            host.language = isPython ? kPythonLanguage : 0;
            EXPECT_EQ(Command(row.name), 2);
            const auto calls = shells::TakeCalls();
            EXPECT_EQ(std::ranges::count(calls, RunLine(row.words)), isPython || !row.needsFile);
            EXPECT_EQ(calls.empty(), !isPython && row.needsFile);
        }
    }
    EXPECT_FALSE(Running()) << "the last was a stop";
}

TEST_F(Messages, TheButtonRunsWithoutAskingForTheTargetsLanguage)
{
    EXPECT_EQ(PluginMain(100, &host), 0);
    host.currentTarget = true;
    host.target = "/t.c";
    EXPECT_EQ(PluginMain(100, &host), 1);
    EXPECT_EQ(shells::TakeCalls(), (Strings{"new Execute", RunLine(" run /t.c\n")}));
}

TEST_F(Messages, TheFrameIsReadFromTheSettingsAndWrittenBack)
{
    EXPECT_EQ(PluginMain(104, &host), 1) << "no line";
    EXPECT_EQ(PluginMain(400, &host), 1);
    EXPECT_EQ(host.log, "") << "no frame";
    const auto read = [&](std::vector<const char*> words) {
        words.push_back(nullptr);
        host.settingsArgv = words.data();
        EXPECT_EQ(PluginMain(104, &host), 1);
        host.settingsArgv = nullptr;
    };
    read({"QuilpWindowFrame", "-frame", "1,2,30,40.5"});
    read({});
    read({"QuilpWindowFrame"});
    read({"QuilpWindowFrame", "-frame", "1,2,3"});
    read({"QuilpWindowFrame", "frame", "-frame", "5,6,70,80"});
    EXPECT_EQ(PluginMain(400, &host), 1);
    EXPECT_EQ(host.log, "settings QuilpWindowFrame -frame 1,2,30,40.5\n");
    QuilpWindow::gWindowRect.reset();
}

TEST_F(Messages, TheButtonIsOfferedForPythonOrATargetWithAsFewQuestionsAsNeeded)
{
    struct Row {
        bool current, project;
        std::uint32_t language;
        const char* log;
    };
    const Row rows[] = {
        {false, false, 0, "HasCurrentTarget HasProjectTarget DocumentLanguage"},
        {false, false, 19, "HasCurrentTarget HasProjectTarget DocumentLanguage button Run"},
        {false, true, 0, "HasCurrentTarget HasProjectTarget button Run"},
        {true, true, 19, "HasCurrentTarget button Run"},
    };
    for (const auto& row : rows) {
        host.currentTarget = row.current;
        host.projectTarget = row.project;
        host.language = row.language;
        EXPECT_EQ(PluginMain(307, &host), 0);
        EXPECT_EQ(host.TakeLog(), row.log);
    }
}

#include "plugin_fixture.h"
#include "quilp_window.h"

#include <dlfcn.h>

using Messages = PluginTest;

TEST_F(Messages, LoadingRegistersTheCommandsAndTheSettingsKey)
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

TEST_F(Messages, UnknownMessagesDoNothing)
{
    for (const int message : {102, 3, 0, -1, 99, 401}) {
        EXPECT_EQ(PluginMain(message, &host), 0) << message;
    }
    EXPECT_EQ(host.log, "");
}

TEST_F(Messages, ACommandIsFoundByItsExactNameAndRunsOnlyARunnableFile)
{
    const std::tuple<const char*, std::int32_t, const char*, const char*> rows[] = {
        {"QuilpRun", 2, " run /p/blink.py\n", ""},
        {"QuilpUpload", 2, " cp /p/blink.py :'blink.py'\n", ""},
        {"QuilpUploadAsMain", 2, " cp /p/blink.py :'main.py'\n", ""},
        {"QuilpList", 2, " ls \n", " ls \n"},
        {"QuilpStop", 2, " disconnect /p/blink.py\n", " disconnect /p/blink.py\n"},
        {"QuilpRu", 0, "", ""},
        {"QuilpRunX", 0, "", ""},
        {"quilprun", 0, "", ""},
        {"", 0, "", ""},
        {nullptr, 0, "", ""},
    };
    for (const auto& [name, result, wordsForPython, wordsForOther] : rows) {
        host.commandName = name;
        OpenPython("/p/blink.py");
        EXPECT_EQ(PluginMain(103, &host), result);
        EXPECT_EQ(TakeWords(), wordsForPython);
        host.language = 0;
        EXPECT_EQ(PluginMain(103, &host), result);
        EXPECT_EQ(TakeWords(), wordsForOther);
    }
}

TEST_F(Messages, TheButtonIsOfferedForPythonOrATargetAndRunsIt)
{
    host.document = "/d.py";
    host.target = "/t.c";
    const std::tuple<bool, bool, std::uint32_t, const char*, const char*> rows[] = {
        {false, false, 0, "HasCurrentTarget HasProjectTarget DocumentLanguage", ""},
        {false, false, 19, "HasCurrentTarget HasProjectTarget DocumentLanguage button Run",
         " run /d.py\n"},
        {false, true, 0, "HasCurrentTarget HasProjectTarget button Run", " run /t.c\n"},
        {true, true, 19, "HasCurrentTarget button Run", " run /d.py\n"},
    };
    for (const auto& [current, project, language, log, words] : rows) {
        host.currentTarget = current;
        host.projectTarget = project;
        host.language = language;
        host.TakeLog();
        EXPECT_EQ(PluginMain(307, &host), 0);
        EXPECT_EQ(host.TakeLog(), log);
        EXPECT_EQ(PluginMain(100, &host), *words != '\0');
        EXPECT_EQ(TakeWords(), words);
    }
}

TEST_F(Messages, TheFrameIsReadFromTheSettingsAndWrittenBack)
{
    EXPECT_EQ(PluginMain(104, &host), 1) << "no settings";
    EXPECT_EQ(PluginMain(400, &host), 1);
    EXPECT_EQ(host.log, "") << "no frame";
    const std::vector<const char*> lines[] = {
        {"QuilpWindowFrame", "-frame", "1,2,30,40.5", nullptr},
        {nullptr, "-frame", "5,6,70,80", nullptr},
        {"QuilpWindowFrame", nullptr},
        {"QuilpWindowFrame", "-frame", "1,2,3", nullptr},
        {"QuilpWindowFrame", "frame", "-frame", "5,6,70,80", nullptr},
    };
    for (const auto& line : lines) {
        host.settingsArgv = line.data();
        EXPECT_EQ(PluginMain(104, &host), 1);
    }
    EXPECT_EQ(PluginMain(400, &host), 1);
    EXPECT_EQ(host.log, "settings QuilpWindowFrame -frame 1,2,30,40.5\n");
    QuilpWindow::gWindowRect.reset();
}

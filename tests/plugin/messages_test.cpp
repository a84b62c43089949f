#include "recording_host.h"
#include "runner.h"

#include <gtest/gtest.h>

extern "C" std::int32_t PluginMain(int message, PluginInterface* pi, ...);
extern "C" const char* PluginHelp();

namespace {

using Log = std::vector<std::string>;

class Messages : public testing::Test {
  protected:
    ~Messages() override { Stop(); }

    std::int32_t Command(const char* name)
    {
        host.commandName = name;
        return PluginMain(103, &host);
    }

    Runtime runtime;
    RecordingHost host{runtime};
};

}  // namespace

TEST_F(Messages, LoadAndRegisterTellTheHostWhatItGets)
{
    EXPECT_EQ(PluginMain(1, &host), 1);
    EXPECT_EQ(host.loadReply[0], 19);
    EXPECT_EQ(host.loadReply[1], 5);
    EXPECT_EQ(PluginMain(2, &host), 1);
    EXPECT_EQ(
        host.log,
        (Log{"command QuilpRun: Run Python source on attached Micro Python device",
             "command QuilpStop: Stop Running on Micro Python Device",
             "command QuilpUpload: Upload Python source on attached Micro Python device",
             "command QuilpUploadAsMain: Upload Python source on attached Micro Python device "
             "as main.py",
             "command QuilpList: List the contents of Micro Python device",
             "key QuilpWindowFrame"}));
    EXPECT_STREQ(PluginHelp(), "Run on micropython capable devices.\nWIP.\n");
}

TEST_F(Messages, UnknownMessagesAndNamesDoNothing)
{
    for (const int message : {102, 3, 0, -1, 99, 401}) {
        EXPECT_EQ(PluginMain(message, &host), 0) << message;
    }
    for (const char* name : {"", "QuilpRu", "QuilpRunX", "quilprun"}) {
        EXPECT_EQ(Command(name), 0) << name;
    }
    EXPECT_EQ(host.log, Log{});
    EXPECT_FALSE(Running());
}

TEST_F(Messages, AKnownCommandIsAcknowledgedAlsoWhenThereIsNothingToRun)
{
    for (const char* name : {"QuilpRun", "QuilpUpload", "QuilpUploadAsMain"}) {
        EXPECT_EQ(Command(name), 2) << name;
        EXPECT_FALSE(Running()) << name;
    }
    host.currentTarget = true;
    host.target = "/t.c";
    for (const char* name : {"QuilpRun", "QuilpUpload", "QuilpUploadAsMain"}) {
        EXPECT_EQ(Command(name), 2) << name;
        EXPECT_FALSE(Running()) << name;
    }
    EXPECT_EQ(PluginMain(100, &host), 1);  // The button does not ask for the language.
    EXPECT_EQ(host.WorksheetWhenIdle(), "[run]\n[/t.c]\n");
}

TEST_F(Messages, EachCommandSendsItsLine)
{
    struct Row {
        const char* name;
        std::string output;
    };
    const Row rows[] = {
        {"QuilpRun", "[run]\n[/p/blink.py]\n"},
        {"QuilpUpload", "[cp]\n[/p/blink.py]\n[:blink.py]\n"},
        {"QuilpUploadAsMain", "[cp]\n[/p/blink.py]\n[:main.py]\n"},
        {"QuilpList", "[ls]\n"},
    };
    host.language = kPythonLanguage;
    host.document = "/p/blink.py";
    for (const auto& row : rows) {
        EXPECT_EQ(Command(row.name), 2);
        EXPECT_EQ(host.WorksheetWhenIdle(), row.output);
    }
    EXPECT_EQ(Command("QuilpStop"), 2);
    EXPECT_FALSE(Running());
    EXPECT_EQ(PluginMain(100, &host), 1);
    host.language = 0;
    Stop();
    EXPECT_EQ(PluginMain(100, &host), 0);
    EXPECT_FALSE(Running());
}

TEST_F(Messages, SettingsAreAcknowledged)
{
    host.settingsArgv = nullptr;
    for (const int message : {104, 400}) {
        EXPECT_EQ(PluginMain(message, &host), 1) << message;
    }
}

TEST_F(Messages, TheButtonIsOfferedForPythonOrATargetWithAsFewQuestionsAsNeeded)
{
    struct Row {
        bool current, project;
        std::uint32_t language;
        Log log;
    };
    const Row rows[] = {
        {false, false, 0, {"HasCurrentTarget", "HasProjectTarget", "DocumentLanguage"}},
        {false,
         false,
         19,
         {"HasCurrentTarget", "HasProjectTarget", "DocumentLanguage", "button Run"}},
        {false, true, 0, {"HasCurrentTarget", "HasProjectTarget", "button Run"}},
        {true, true, 19, {"HasCurrentTarget", "button Run"}},
    };
    for (const auto& row : rows) {
        host.log.clear();
        host.currentTarget = row.current;
        host.projectTarget = row.project;
        host.language = row.language;
        EXPECT_EQ(PluginMain(307, &host), 0);
        EXPECT_EQ(host.log, row.log);
    }
}

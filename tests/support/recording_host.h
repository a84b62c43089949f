#pragma once

#include "PluginInterface.h"
#include "command_line.h"
#include "plugin_bundle.h"
#include "rebinder.h"

#include <gtest/gtest.h>

#include <QString>

#include <cstdarg>
#include <string>
#include <tuple>
#include <utility>

// A host that returns what a test has set and records its calls in `log`.
class RecordingHost final : public PluginInterface {
  public:
    RecordingHost() { bundle = &itsBundle; }

    std::string TakeLog() { return std::exchange(log, {}); }
    // The first word of every command line.
    std::string Tool() const
    {
        return EscapeWord(itsBundle.path) + "/Resources/mpremote/mpremote.py";
    }

    PluginBundle itsBundle{QUILP_BUNDLE};
    std::uint32_t language = 0;
    std::string document;
    bool projectTarget = false;
    bool currentTarget = false;
    std::uint32_t targetLanguage = 0;
    std::string target;
    BRect buttonFrame;
    std::pair<std::uint32_t, std::uint32_t> shortcut{0, 0};  // of every command
    std::string log;                                         // entries separated by spaces
    std::string worksheet;

    void AddButton(const std::string& name, void* pluginBundle) override
    {
        EXPECT_EQ(pluginBundle, bundle);
        Note("button " + name);
    }
    BRect ButtonFrame() override { return buttonFrame; }
    void RegisterSettingsKey(const std::string& key) override { Note("key " + key); }
    void RegisterCommand(const std::string& name, const std::string& description) override
    {
        Note("command " + name + ": " + description);
    }
    EntryRef DocumentRef() override { return Note("DocumentRef", EntryRef(document)); }
    bool HasCurrentTarget() override { return Note("HasCurrentTarget", currentTarget); }
    bool HasProjectTarget() override { return Note("HasProjectTarget", projectTarget); }
    std::uint32_t DocumentLanguage() override { return Note("DocumentLanguage", language); }
    void WriteSettings(const char* format, ...) override
    {
        va_list arguments;
        va_start(arguments, format);
        Note("settings " + QString::vasprintf(format, arguments).toStdString());
        va_end(arguments);
    }
    std::pair<std::uint32_t, std::uint32_t> CommandShortcut(const std::string& name) override
    {
        return Note("shortcut of " + name, shortcut);
    }
    Rebinder MakeRebinder(std::int32_t kind) override
    {
        EXPECT_EQ(kind, 0);
        return MakeRebinderFor(*this);
    }
    void InsertInWorksheet(const std::string& text, const std::string& second, std::int32_t third,
                           std::int32_t fourth, std::int32_t fifth) override
    {
        EXPECT_EQ(std::tuple(second, third, fourth, fifth), std::tuple("", 1, 1, -1));
        worksheet += text;
    }
    std::uint32_t TargetLanguage(std::uint32_t handle) override
    {
        EXPECT_EQ(handle, kTarget);
        return Note("TargetLanguage", targetLanguage);
    }
    EntryRef TargetRef(std::uint32_t handle) override
    {
        EXPECT_EQ(handle, kTarget);
        return Note("TargetRef", EntryRef(target));
    }
    std::uint32_t CurrentTarget() override { return Note("CurrentTarget", kTarget); }

  private:
    static constexpr std::uint32_t kTarget = 42;

    // Adds an entry to the log and returns the result.
    template <class Result = int>
    Result Note(const std::string& entry, Result result = {})
    {
        log += (log.empty() ? "" : " ") + entry;
        return result;
    }
};

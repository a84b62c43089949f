#pragma once

#include "PluginInterface.h"
#include "plugin_bundle.h"

#include <atomic>
#include <string>
#include <utility>
#include <vector>

// A host that gives the answers that a test has set, and records in `log` what it is asked and
// what it is given. Its bundle is the real one.
class RecordingHost final : public PluginInterface {
  public:
    RecordingHost() { bundle = &itsBundle; }

    std::string TakeLog() { return std::exchange(log, {}); }
    // The first word of every command line.
    std::string Tool() const { return itsBundle.path + "/Resources/mpremote/mpremote.py"; }

    PluginBundle itsBundle{QUILP_BUNDLE};
    std::uint32_t language = 0;
    std::string document;
    bool projectTarget = false;
    bool currentTarget = false;
    std::uint32_t targetLanguage = 0;
    std::string target;
    BRect buttonFrame;
    std::pair<std::uint32_t, std::uint32_t> shortcut{0, 0};  // of every command
    std::vector<std::string> shortcutsAsked;                 // the names
    std::string log;                                         // with a blank between the entries
    std::string worksheet;
    std::atomic<int> rebound = 0;  // how often a rebinder was called

    void AddButton(const std::string& name, void* pluginBundle) override;
    BRect ButtonFrame() override { return buttonFrame; }
    void RegisterSettingsKey(const std::string& key) override { Note("key " + key); }
    void RegisterCommand(const std::string& name, const std::string& description) override;
    EntryRef DocumentRef() override { return Note("DocumentRef", EntryRef(document)); }
    bool HasCurrentTarget() override { return Note("HasCurrentTarget", currentTarget); }
    bool HasProjectTarget() override { return Note("HasProjectTarget", projectTarget); }
    std::uint32_t DocumentLanguage() override { return Note("DocumentLanguage", language); }
    void WriteSettings(const char* format, ...) override;
    std::pair<std::uint32_t, std::uint32_t> CommandShortcut(const std::string& name) override;
    Rebinder MakeRebinder(std::int32_t kind) override;
    void InsertInWorksheet(const std::string& text, const std::string& second, std::int32_t third,
                           std::int32_t fourth, std::int32_t fifth) override;
    std::uint32_t TargetLanguage(std::uint32_t handle) override;
    EntryRef TargetRef(std::uint32_t handle) override;
    std::uint32_t CurrentTarget() override { return Note("CurrentTarget", kTarget); }

  private:
    static constexpr std::uint32_t kTarget = 42;

    // Adds an entry to the log; the answer is given on.
    template <class Answer = int>
    Answer Note(const std::string& entry, Answer answer = {})
    {
        log += (log.empty() ? "" : " ") + entry;
        return answer;
    }
};

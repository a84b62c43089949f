#pragma once

#include "PluginInterface.h"
#include "plugin_bundle.h"
#include "runtime.h"
#include "wait.h"

#include <atomic>
#include <string>
#include <vector>

// A host that answers as told, and writes down in `log` what it is asked and told. Its tool is a
// real program: a script that prints its words, one "[word]" a line, and then what the file "says"
// beside it holds.
class RecordingHost final : public PluginInterface {
  public:
    explicit RecordingHost(Runtime& runtime);

    std::string toolLine() const { return bundle_.path + "/Resources/mpremote/mpremote.py"; }
    // From now on the tool is the real one.
    void UseRealTool() { bundle_.path = QUILP_BUNDLE; }
    // What the tool prints after its words.
    void ToolSays(const std::string& text) { folder_.Write("Resources/mpremote/says", text); }
    // The same, for one command.
    void ToolSays(const std::string& command, const std::string& text)
    {
        folder_.Write("Resources/mpremote/says-" + command, text);
    }
    // Whether the tool goes on for a minute after it has spoken, at this command.
    void ToolHangs(const std::string& command, bool hangs = true);
    // The words of each call of the tool so far.
    std::vector<std::string> ToolCalls();
    // From now on work that is posted on this thread waits for ReleaseWork.
    void HoldWork() { holdsWork_ = true; }
    void ReleaseWork();
    // Runs the event loop until no command runs. Returns the worksheet, and empties it.
    std::string WorksheetWhenIdle();

    // How often work was posted from a thread of a shell.
    int PostedElsewhere() const { return postedElsewhere_; }

    std::uint32_t language = 0;
    std::string document;
    bool projectTarget = false;
    bool currentTarget = false;
    std::uint32_t targetLanguage = 0;
    std::string target;
    BRect buttonFrame;
    std::pair<std::uint32_t, std::uint32_t> shortcut{0, 0};  // of every command
    std::vector<std::string> shortcutsAsked;                 // the names
    std::vector<std::string> log;
    std::string worksheet;

    void AddButton(const std::string& name, void* pluginBundle) override;
    BRect ButtonFrame() override { return buttonFrame; }
    void RegisterSettingsKey(const std::string& key) override { log.push_back("key " + key); }
    void RegisterCommand(const std::string& name, const std::string& description) override;
    EntryRef DocumentRef() override;
    bool HasCurrentTarget() override;
    bool HasProjectTarget() override;
    std::uint32_t DocumentLanguage() override;
    void WriteSettings(const char* format, ...) override;
    std::pair<std::uint32_t, std::uint32_t> CommandShortcut(const std::string& name) override
    {
        shortcutsAsked.push_back(name);
        return shortcut;
    }
    Rebinder MakeRebinder(std::int32_t kind) override;
    void InsertInWorksheet(const std::string& text, const std::string& second, std::int32_t third,
                           std::int32_t fourth, std::int32_t fifth) override;
    std::uint32_t TargetLanguage(std::uint32_t handle) override;
    EntryRef TargetRef(std::uint32_t handle) override;
    std::uint32_t CurrentTarget() override;

  private:
    Runtime& runtime_;
    TemporaryFolder folder_;
    PluginBundle bundle_;
    std::atomic<int> postedElsewhere_ = 0;
    bool holdsWork_ = false;
    std::vector<PluginWork> heldWork_;
};

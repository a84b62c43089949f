#pragma once

#include "PluginInterface.h"
#include "host_window.h"
#include "plugin_module.h"
#include "runtime.h"

#include <expected>
#include <functional>
#include <string>
#include <vector>

class PluginSettings;
class Shortcuts;

// A command that the plug-in registered.
struct RegisteredCommand {
    std::string name;
    std::string description;
};

// The editor as the plug-in sees it: it answers the plug-in's questions and sends it messages. What
// the plug-in throws meanwhile goes to the error handler (protect.h). Used on the user-interface
// thread; outlives the Runtime's last task.
class EditorHost final : public PluginInterface {
  public:
    using Worksheet = std::function<void(const std::string& text)>;

    // `plugin` and `runtime` must outlive this object. `widget` is the editor's window, not owned;
    // null when there is none.
    EditorHost(const PluginModule& plugin, Runtime& runtime, Worksheet worksheet,
               QWidget* widget = nullptr);

    // Where the plug-in's settings lines are kept and what its commands' shortcuts are; without
    // them there are none. Not owned. The settings are to be set before Start.
    void SetSettings(PluginSettings* settings) { settings_ = settings; }
    void SetShortcuts(const Shortcuts* shortcuts) { shortcuts_ = shortcuts; }

    // Full paths; empty for none. The user's target goes before the project's.
    void SetDocument(std::string path) { document_ = EntryRef(std::move(path)); }
    void SetTarget(std::string path) { target_ = EntryRef(std::move(path)); }
    void SetProjectTarget(std::string path) { projectTarget_ = EntryRef(std::move(path)); }

    // Loads the plug-in: it must take the host on, registers its commands, and reads its settings.
    // The error is a sentence.
    std::expected<void, std::string> Start();

    const std::vector<RegisteredCommand>& commands() const { return commands_; }

    // Has the plug-in perform a registered command. False when it does not know it.
    bool Perform(const std::string& command);

    // The names of the controls that the plug-in offers for the front document as it is now.
    std::vector<std::string> OfferedControls();
    // As a click on such a control.
    void PressControl();
    // As a click on its arrow; returns when the menu has closed. In the window's coordinates.
    // `mayPerform` is asked about the label of the item that the user chose.
    void OpenPopUp(BRect control, std::function<bool(const std::string& label)> mayPerform);

    // Chooses from the plug-in's menu without showing it. False when no item has this label
    // or its action threw.
    bool PerformFromMenu(const std::string& label);

    // Has the plug-in write its settings lines, and saves them. The error is a sentence.
    std::expected<void, std::string> SaveSettings();

    // Whether a command that acts on a file would find one.
    bool HasRunnable() const;

    void AddButton(const std::string& name, void* pluginBundle) override;
    BRect ButtonFrame() override;
    void RegisterSettingsKey(const std::string& key) override;
    void RegisterCommand(const std::string& name, const std::string& description) override;
    EntryRef DocumentRef() override;
    bool HasCurrentTarget() override;
    bool HasProjectTarget() override;
    std::uint32_t DocumentLanguage() override;
    [[gnu::format(printf, 2, 3)]] void WriteSettings(const char* format, ...) override;
    std::pair<std::uint32_t, std::uint32_t> CommandShortcut(const std::string& name) override;
    Rebinder MakeRebinder(std::int32_t kind) override;
    void InsertInWorksheet(const std::string& text, const std::string& second, std::int32_t third,
                           std::int32_t fourth, std::int32_t fifth) override;
    std::uint32_t TargetLanguage(std::uint32_t target) override;
    EntryRef TargetRef(std::uint32_t target) override;
    std::uint32_t CurrentTarget() override;

  private:
    std::int32_t Send(int message);
    void ReadSettings();
    const EntryRef& RunningTarget() const;

    const PluginModule& plugin_;
    Runtime& runtime_;
    Worksheet worksheet_;
    HostWindow hostWindow_;
    PluginSettings* settings_ = nullptr;
    const Shortcuts* shortcuts_ = nullptr;
    EntryRef document_;
    EntryRef target_;
    EntryRef projectTarget_;
    std::vector<RegisteredCommand> commands_;
    std::vector<std::string> settingsKeys_;
    std::vector<std::string> offered_;
    BRect control_;
    std::string writtenSettings_;
};

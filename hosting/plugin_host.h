#pragma once

#include "PluginInterface.h"
#include "host_window.h"
#include "plugin_commands.h"
#include "plugin_module.h"
#include "runtime.h"

#include <expected>
#include <functional>
#include <string>
#include <vector>

class SettingsStore;

// The host editor as the plug-in sees it: it answers the plug-in's questions and sends it messages.
// Exceptions that the plug-in throws meanwhile go to the Runtime's error handler. Used on the
// user-interface thread; must outlive the Runtime's last task.
class PluginHost final : public PluginInterface {
  public:
    using Worksheet = std::function<void(const std::string& text)>;
    // Key and modifiers of a command, see ShortcutCode.
    using FindShortcut = std::function<std::pair<std::uint32_t, std::uint32_t>(const std::string&)>;

    // `plugin` and `runtime` must outlive this object. `widget` is the editor's window, not owned;
    // null when there is none.
    PluginHost(const PluginModule& plugin, Runtime& runtime, Worksheet worksheet,
               QWidget* widget = nullptr);

    // Where the plug-in's settings lines are kept; null for nowhere. Not owned. Before Start.
    void SetSettings(SettingsStore* settings) { settings_ = settings; }
    // Without it the commands have no shortcuts.
    void SetShortcuts(FindShortcut find) { findShortcut_ = std::move(find); }

    // Full paths; empty for none. The user's target has priority over the project's.
    void SetDocument(std::string path) { document_ = EntryRef(std::move(path)); }
    void SetTarget(std::string path) { target_ = EntryRef(std::move(path)); }
    void SetProjectTarget(std::string path) { projectTarget_ = EntryRef(std::move(path)); }

    // Starts the plug-in: it must accept the host, registers its commands and reads its settings.
    // The error is a sentence.
    std::expected<void, std::string> Start();

    const std::vector<RegisteredCommand>& commands() const { return commands_; }

    // Makes the plug-in perform a registered command. False when it does not know it.
    bool Perform(const std::string& command);
    // The same for any command of the table.
    bool Perform(const PluginCommand& command);

    // The names of the controls that the plug-in offers for the front document as it is now.
    std::vector<std::string> OfferedControls();
    // As a click on such a control.
    void PressControl();
    // As a click on its arrow; returns when the menu has closed. The control's frame is in the
    // window's coordinates. `mayPerform` is called with the label of the item that the user chose.
    void OpenPopUp(BRect control, std::function<bool(const std::string& label)> mayPerform);

    // Chooses from the plug-in's menu without showing it. False when no item has this label, or its
    // action threw an exception.
    bool PerformFromMenu(const std::string& label);

    // Makes the plug-in write its settings lines, and saves them. The error is a sentence.
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
    SettingsStore* settings_ = nullptr;
    FindShortcut findShortcut_;
    EntryRef document_;
    EntryRef target_;
    EntryRef projectTarget_;
    std::vector<RegisteredCommand> commands_;
    std::vector<std::string> settingsKeys_;
    std::vector<std::string> offered_;
    BRect control_;
    std::string writtenSettings_;
};

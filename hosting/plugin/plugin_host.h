#pragma once

#include "PluginInterface.h"
#include "command_paths.h"
#include "host_window.h"
#include "plugin_commands.h"
#include "plugin_module.h"
#include "runtime.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class SettingsStore;

// The host editor's side of the plug-in interface: answers the plug-in's requests and sends it
// messages. Exceptions that the plug-in throws are passed to the Runtime's error handler. Must
// outlive the Runtime's last task. [ui]
class PluginHost final : public PluginInterface {
  public:
    using Worksheet = std::function<void(const std::string& text)>;
    // Returns the key and the modifiers of a command (see ShortcutCode).
    using FindShortcut = std::function<std::pair<std::uint32_t, std::uint32_t>(const std::string&)>;

    // `plugin` and `runtime` must outlive this object. `widget` is the editor's window, not owned;
    // null if there is none.
    PluginHost(const PluginModule& plugin, Runtime& runtime, Worksheet worksheet,
               QWidget* widget = nullptr);

    // Stores the plug-in's settings; null to discard them. Not owned. Call it before Start.
    void SetSettings(SettingsStore* settings) { settings_ = settings; }
    // Sets the source of the commands' shortcuts. Without it, commands have none.
    void SetShortcuts(FindShortcut find) { findShortcut_ = std::move(find); }

    // The host's window, in which the plug-in is called from now on. Not owned.
    void SetWindow(QWidget* widget);

    // Full paths; empty if there is none. The user's target takes precedence over the project's.
    // Without a language, a document has the one that its name says. A Python document may have no
    // path yet: then a command acts on nothing, rather than on the target.
    void SetDocument(std::string path);
    void SetDocument(std::string path, bool isPython);
    void SetTarget(std::string path) { target_ = EntryRef(std::move(path)); }
    void SetProjectTarget(std::string path) { projectTarget_ = EntryRef(std::move(path)); }

    // Starts the plug-in, which must accept the host, registers its commands and reads its
    // settings. The error is a message for the user.
    std::expected<void, std::string> Start();

    const std::vector<RegisteredCommand>& commands() const { return commands_; }

    // Makes the plug-in perform a registered command. Returns false if the command is unknown.
    bool Perform(const std::string& command);
    // Does the same for any command in kPluginCommands.
    bool Perform(const PluginCommand& command);

    // The names of the controls that the plug-in offers for the current front document.
    std::vector<std::string> OfferedControls();
    // Reports a click on such a control to the plug-in.
    void PressControl();
    // Opens the plug-in's menu below a control, and returns when the menu has closed. The control's
    // frame is in the window's coordinates. `mayPerform` is called with the label of the item that
    // the user chose, and can prevent the action.
    void OpenPopUp(BRect control, std::function<bool(const std::string& label)> mayPerform);

    // Performs an item of the plug-in's menu without showing it. Returns false if no item has this
    // label, or if its action threw an exception.
    bool PerformFromMenu(const std::string& label);

    // Makes the plug-in write its settings, and saves them. The error is a message for the user.
    std::expected<void, std::string> SaveSettings();

    // The Python document, or the Python target, that a command would act on; empty if there is
    // none.
    const EntryRef& Runnable() const;
    bool HasRunnable() const { return !Runnable().path().empty(); }

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
    std::unique_ptr<HostWindow> hostWindow_;
    SettingsStore* settings_ = nullptr;
    FindShortcut findShortcut_;
    EntryRef document_;
    bool isPython_ = false;  // The document.
    EntryRef target_;
    EntryRef projectTarget_;
    std::vector<RegisteredCommand> commands_;
    std::vector<std::string> settingsKeys_;
    std::vector<std::string> offered_;
    BRect control_;
    std::string writtenSettings_;
    CommandPaths paths_;
};

#pragma once

#include "PluginInterface.h"
#include "host_window.h"
#include "plugin_module.h"
#include "runtime.h"

#include <expected>
#include <functional>
#include <string>

// The editor as the plug-in sees it: it answers the plug-in's questions and sends it messages.
// Used on the user-interface thread; outlives the Runtime's last task.
class EditorHost final : public PluginInterface {
  public:
    using Worksheet = std::function<void(const std::string& text)>;

    // `plugin` and `runtime` must outlive this object. `widget` is the editor's window, not owned;
    // null when there is none.
    EditorHost(const PluginModule& plugin, Runtime& runtime, Worksheet worksheet,
               QWidget* widget = nullptr);

    // Full paths; empty for none.
    void SetDocument(std::string path) { document_ = EntryRef(std::move(path)); }
    void SetTarget(std::string path) { target_ = EntryRef(std::move(path)); }

    // Loads the plug-in: it must take the host on, and registers its commands. The error is a
    // sentence.
    std::expected<void, std::string> Start();

    // Has the plug-in perform a registered command. False when it does not know it.
    bool Perform(const std::string& command);

    // Chooses from the plug-in's menu without showing it. False when no item has this label.
    bool PerformFromMenu(const std::string& label);

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
    const PluginModule& plugin_;
    Runtime& runtime_;
    Worksheet worksheet_;
    HostWindow hostWindow_;
    EntryRef document_;
    EntryRef target_;
};

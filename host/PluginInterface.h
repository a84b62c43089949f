#pragma once

#include "EntryRef.h"
#include "Geometry.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

class BWindow;

// The language code of Python source; the host has others for other languages.
inline constexpr std::uint32_t kPythonLanguage = 19;

// The host editor as a plug-in sees it. Owned by the host, valid only during the call it is passed
// to; later work gets a valid one through MakeRebinder. Every operation is called on the
// user-interface thread. The order of the operations is the order of their slots in the host's
// table and must not change.
class PluginInterface {
  public:
    using PluginWork = std::function<void(PluginInterface*)>;
    // Has the host call the work on the user-interface thread: at once when it is called there, and
    // later, in the order of the calls, when it is called on any other thread. Usable on any
    // thread. Work that is still waiting when the host ends is destroyed without a call.
    using Rebinder = std::function<void(const PluginWork&)>;

    // The window in which the plug-in was called.
    BWindow* window = nullptr;
    // Written by the plug-in at message 1.
    std::int32_t loadReply[2] = {0, 0};
    // The command to perform, at message 103.
    const char* commandName = nullptr;
    // The words of the plug-in's saved settings line at message 104, ended by a null pointer; null
    // when there is no such line.
    const char* const* settingsArgv = nullptr;
    // The plug-in's own bundle.
    void* bundle = nullptr;

    // Offers a control of this name for the front document.
    virtual void AddButton(const std::string& name, void* pluginBundle) = 0;
    // The control through which the pop-up was asked for, in the coordinates of `window`.
    virtual BRect ButtonFrame() = 0;
    // Has the host keep the plug-in's settings line under this key.
    virtual void RegisterSettingsKey(const std::string& key) = 0;
    // Lists a command, which comes back as message 103.
    virtual void RegisterCommand(const std::string& name, const std::string& description) = 0;
    // The front document; an empty reference when there is none.
    virtual EntryRef DocumentRef() = 0;
    virtual bool HasCurrentTarget() = 0;
    virtual bool HasProjectTarget() = 0;
    // The language code of the front document.
    virtual std::uint32_t DocumentLanguage() = 0;
    // Appends to the plug-in's saved settings, in the manner of printf.
    virtual void WriteSettings(const char* format, ...) = 0;
    // Key and modifiers bound to a registered command; key 0 when there is none.
    virtual std::pair<std::uint32_t, std::uint32_t> CommandShortcut(const std::string& name) = 0;
    // `kind` is always 0.
    virtual Rebinder MakeRebinder(std::int32_t kind) = 0;
    // Writes text into the worksheet. The other arguments are always "", 1, 1 and -1.
    virtual void InsertInWorksheet(const std::string& text, const std::string& second,
                                   std::int32_t third, std::int32_t fourth, std::int32_t fifth) = 0;
    virtual std::uint32_t TargetLanguage(std::uint32_t target) = 0;
    virtual EntryRef TargetRef(std::uint32_t target) = 0;
    // A handle that the host understands; only when it has a target.
    virtual std::uint32_t CurrentTarget() = 0;

  protected:
    // Not virtual: the table holds the host's operations alone. Plug-ins never delete the host.
    ~PluginInterface() = default;
};

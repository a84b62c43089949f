#pragma once

#include "EntryRef.h"
#include "Geometry.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

// The interface between a host editor and a plug-in.
//
// Thread rules, as tags behind the sentence that they hold for:
//   [ui]   called on the user-interface thread only
//   [any]  callable on any thread
//
// Order of messages. After loading the module the host sends kLoad, kRegister, kReadSettings for
// each settings key, and kOfferButton for the front document. From then on it sends kButtonPressed,
// kPopUpRequested and kCommand as the user acts, kOfferButton whenever the front document or the
// target changes, and kSaveSettings before it saves its settings. There is no message at the end.

class BWindow;
class PluginInterface;

// The entry points that a plug-in exports, without type decoration. [ui]
extern "C" {
// The answer depends on the message; 0 for one that the plug-in does not know.
using PluginMainFunction = std::int32_t(int message, PluginInterface* pi, ...);
// A constant text for the user.
using PluginHelpFunction = const char*();
}

// The host's message codes.
enum PluginMessage : int {
    kLoad = 1,              // Write `loadReply`; 1 accepts this host.
    kRegister = 2,          // Register commands and settings keys.
    kButtonPressed = 100,   // The offered control was pressed; 1 when a command was started.
    kPopUpRequested = 101,  // Show the menu of all commands; returns when it has closed.
    kCommand = 103,         // Perform `commandName`; 2 when the name is known.
    kReadSettings = 104,    // Read `settingsArgv`.
    kOfferButton = 307,     // Offer controls for the front document.
    kSaveSettings = 400,    // Write the settings lines.
};

// The language code of Python source; the host has others for other languages.
inline constexpr std::uint32_t kPythonLanguage = 19;

// The host editor as a plug-in sees it. Owned by the host, valid only during the call it is passed
// to; later work gets a valid one through MakeRebinder. All operations are [ui]. The order of the
// operations is the order of their slots in the host's table and must not change.
class PluginInterface {
  public:
    using PluginWork = std::function<void(PluginInterface*)>;
    // Calls the work with a valid host on the user-interface thread: at once when it is called
    // there, otherwise later, in the order of the calls. [any] Work that is still pending when the
    // host ends is destroyed without a call.
    using Rebinder = std::function<void(const PluginWork&)>;

    // The window in which the plug-in was called.
    BWindow* window = nullptr;
    // Written by the plug-in at kLoad.
    std::int32_t loadReply[2] = {0, 0};
    // The command to perform, at kCommand.
    const char* commandName = nullptr;
    // The words of the plug-in's saved settings line at kReadSettings, terminated by a null
    // pointer; null when there is no such line.
    const char* const* settingsArgv = nullptr;
    // The plug-in's own bundle.
    void* bundle = nullptr;

    // Offers a control of this name for the front document.
    virtual void AddButton(const std::string& name, void* pluginBundle) = 0;
    // The frame, in the coordinates of `window`, of the control that requested the pop-up menu.
    virtual BRect ButtonFrame() = 0;
    // Makes the host keep the plug-in's settings line under this key.
    virtual void RegisterSettingsKey(const std::string& key) = 0;
    // Lists a command, which comes back as kCommand.
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
    // A handle that the host understands. Only when it has a target.
    virtual std::uint32_t CurrentTarget() = 0;

  protected:
    // Not virtual: the table holds the host's operations only. Plug-ins never delete the host.
    ~PluginInterface() = default;
};

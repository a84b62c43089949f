#pragma once

#include "EntryRef.h"
#include "Geometry.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

// The interface between a host editor and a plug-in.
//
// Thread rules are given as tags, in all headers. A tag at the end of a class comment applies to
// all operations of the class, unless an operation has its own.
//   [ui]   called on the user-interface thread only
//   [any]  callable on any thread
//
// Order of messages: After loading the module, the host sends kLoad, kRegister, kReadSettings for
// each settings key, and kOfferButton for the front document. From then on it sends kButtonPressed,
// kPopUpRequested and kCommand in response to the user, kOfferButton whenever the front document or
// the target changes, and kSaveSettings before it saves its settings. No message is sent on exit.

class BWindow;
class PluginInterface;

// The functions that a plug-in exports, with C linkage. [ui]
extern "C" {
// The return value depends on the message; 0 for an unknown message.
using PluginMainFunction = std::int32_t(int message, PluginInterface* pi, ...);
// Returns the plug-in's help text, a constant.
using PluginHelpFunction = const char*();
}

// The codes of the messages that the host sends.
enum PluginMessage : int {
    kLoad = 1,              // Write `loadReply`; 1 accepts this host.
    kRegister = 2,          // Register commands and settings keys.
    kButtonPressed = 100,   // The offered control was pressed; returns 1 if a command was started.
    kPopUpRequested = 101,  // Show the menu of all commands; returns after it has closed.
    kCommand = 103,         // Perform `commandName`; returns 2 if the name is known.
    kReadSettings = 104,    // Read `settingsArgv`.
    kOfferButton = 307,     // Offer controls for the front document.
    kSaveSettings = 400,    // Write the settings.
};

// The host's language code for Python source.
inline constexpr std::uint32_t kPythonLanguage = 19;

// The host editor as a plug-in sees it. Owned by the host and valid only during the call it is
// passed to; work done later obtains a valid one through MakeRebinder. The virtual functions are
// declared in the order of their slots in the host's table; this order must not change. [ui]
class PluginInterface {
  public:
    using PluginWork = std::function<void(PluginInterface*)>;
    // Calls the work with a valid host on the user-interface thread: immediately if called on that
    // thread, otherwise later, in the order of the calls. Work that is still pending when the host
    // exits is destroyed without being called. [any]
    using Rebinder = std::function<void(const PluginWork&)>;

    // The window in which the plug-in was called.
    BWindow* window = nullptr;
    // Written by the plug-in at kLoad.
    std::int32_t loadReply[2] = {0, 0};
    // The command to perform, at kCommand.
    const char* commandName = nullptr;
    // The words of the plug-in's saved settings line, at kReadSettings, terminated by a null
    // pointer; null if there is no such line.
    const char* const* settingsArgv = nullptr;
    // The plug-in's own bundle.
    void* bundle = nullptr;

    // Offers a control with this name for the front document.
    virtual void AddButton(const std::string& name, void* pluginBundle) = 0;
    // The frame, in the coordinates of `window`, of the control that requested the pop-up menu.
    virtual BRect ButtonFrame() = 0;
    // Makes the host save the plug-in's settings line under this key.
    virtual void RegisterSettingsKey(const std::string& key) = 0;
    // Registers a command, which the host sends as kCommand when the user invokes it.
    virtual void RegisterCommand(const std::string& name, const std::string& description) = 0;
    // The front document; an empty reference if there is none.
    virtual EntryRef DocumentRef() = 0;
    virtual bool HasCurrentTarget() = 0;
    virtual bool HasProjectTarget() = 0;
    // The language code of the front document.
    virtual std::uint32_t DocumentLanguage() = 0;
    // Appends to the plug-in's saved settings; formats as printf does.
    virtual void WriteSettings(const char* format, ...) = 0;
    // The key and modifiers bound to a registered command; the key is 0 if there are none.
    virtual std::pair<std::uint32_t, std::uint32_t> CommandShortcut(const std::string& name) = 0;
    // `kind` is always 0.
    virtual Rebinder MakeRebinder(std::int32_t kind) = 0;
    // Inserts text into the worksheet. The other arguments are always "", 1, 1 and -1.
    virtual void InsertInWorksheet(const std::string& text, const std::string& second,
                                   std::int32_t third, std::int32_t fourth, std::int32_t fifth) = 0;
    virtual std::uint32_t TargetLanguage(std::uint32_t target) = 0;
    virtual EntryRef TargetRef(std::uint32_t target) = 0;
    // A handle of the current target. Must be called only if there is one.
    virtual std::uint32_t CurrentTarget() = 0;

  protected:
    // Not virtual, because the table holds only the host's operations. Plug-ins never delete the
    // host.
    ~PluginInterface() = default;
};

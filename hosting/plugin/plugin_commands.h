#pragma once

#include <QString>

#include <array>
#include <string>
#include <string_view>

// A command of the plug-in as hosts present it. [any]

struct PluginCommand {
    // The name under which the plug-in registers the command; empty if the command exists only in
    // the plug-in's menu.
    std::string_view name;
    // The beginning of its label in that menu; the whole label if the command has no name. Commands
    // whose labels begin alike agree in `needsFile`.
    std::string_view menuLabel;
    // The name in batch mode; empty if the command needs windows.
    std::string_view batchName;
    const char* defaultShortcut;
    // Whether it acts on the front document or the target, which must be saved first.
    bool needsFile;
    // The label in the host's menus; empty if it is derived from the name.
    const char* label = "";
};

inline constexpr std::string_view kOpenDeviceWindow = "Open Device window";

inline constexpr std::array<PluginCommand, 8> kPluginCommands{{
    {"QuilpRun", "Run", "run", "F5", true},
    {"QuilpStop", "Stop ", "stop", "Shift+F5", false},
    {"QuilpUpload", "Upload ", "upload", "F6", true},
    {"QuilpUploadAsMain", "Upload", "upload-as-main", "Shift+F6", true, "Upload as main.py"},
    {"QuilpList", "List ", "list", "F7", false},
    {"", "Status ", "status", "", false},
    {"", "Add upload command to worksheet ", "copy-template", "", false},
    {"", kOpenDeviceWindow, "", "", false},
}};

// Return null if there is no such row: the plug-in may have commands that are unknown to hosts.
const PluginCommand* FindCommandByName(std::string_view name);
const PluginCommand* FindCommandByLabel(std::string_view label);
const PluginCommand* FindCommandByBatchName(std::string_view name);

// Whether the command acts on a file that must be saved first; false for an unknown command.
inline bool NeedsFile(const PluginCommand* command)
{
    return command != nullptr && command->needsFile;
}

// A command as the plug-in registered it.
struct RegisteredCommand {
    std::string name;
    std::string description;
};

// The label of a registered command in menus: its name split into words, without the common prefix.
QString CommandLabel(const RegisteredCommand& command);

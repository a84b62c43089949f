#pragma once

#include <QString>

#include <array>
#include <string>
#include <string_view>

// The plug-in's commands as hosts present them: a new command needs one row here.

struct PluginCommand {
    // The name under which the plug-in registers the command; empty when it exists in the plug-in's
    // menu only.
    std::string_view name;
    // What its label in that menu begins with; the whole label when the command has no name.
    std::string_view menuLabel;
    // The command in batch mode; empty when it needs windows.
    std::string_view batchWord;
    const char* defaultShortcut;
    // Whether it acts on the front document or the target, which must be saved before.
    bool needsFile;
};

inline constexpr std::string_view kOpenDeviceWindow = "Open Device window";

inline constexpr std::array<PluginCommand, 8> kPluginCommands{{
    {"QuilpRun", "Run", "run", "F5", true},
    {"QuilpStop", "Stop ", "stop", "Shift+F5", false},
    {"QuilpUpload", "Upload ", "upload", "F6", true},
    {"QuilpUploadAsMain", "Upload", "upload-as-main", "Shift+F6", true},
    {"QuilpList", "List ", "list", "F7", false},
    {"", "Status ", "status", "", false},
    {"", "Add upload command to worksheet ", "copy-template", "", false},
    {"", kOpenDeviceWindow, "", "", false},
}};

// Null when there is no such row: the plug-in may have commands that hosts know nothing of.
const PluginCommand* FindCommandByName(std::string_view name);
const PluginCommand* FindCommandByLabel(std::string_view label);
const PluginCommand* FindCommandByBatchName(std::string_view word);

// Whether the command has a file that must be saved before; false for an unknown one.
inline bool NeedsFile(const PluginCommand* command)
{
    return command != nullptr && command->needsFile;
}

// A command as the plug-in registered it.
struct RegisteredCommand {
    std::string name;
    std::string description;
};

// How a menu shows a registered command: its name as words, without the prefix that all names
// share.
QString CommandLabel(const RegisteredCommand& command);

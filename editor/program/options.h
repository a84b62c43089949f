#pragma once

#include "appearance.h"
#include "plugin_commands.h"

#include <chrono>
#include <expected>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// Prints the plug-in's help.
struct ShowHelp {
    bool operator==(const ShowHelp&) const = default;
};
using Wait = std::chrono::duration<double>;
using BatchCommand = std::variant<const PluginCommand*, ShowHelp, Wait>;

// What the command line asks for.
struct Options {
    std::string plugin;  // Empty: the one that is bundled with the editor.
    bool virtualBoard = false;
    std::string boardFolder;  // Empty: the user's own.
    std::string target;
    std::string document;
    bool batch = false;
    std::vector<BatchCommand> commands;
    std::vector<std::string> files;  // To open in the editor.
    bool openDeviceWindow = false;   // And nothing else.
    std::optional<Appearance> appearance;
    bool version = false;
    bool help = false;
};

// The text that --help prints.
std::string Usage();

// The error is a sentence for the user. Accesses no file.
std::expected<Options, std::string> ParseOptions(const std::vector<std::string>& arguments);

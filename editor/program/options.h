#pragma once

#include "appearance.h"
#include "plugin_commands.h"

#include <chrono>
#include <expected>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// The batch command that prints the plug-in's help.
struct ShowHelp {
    bool operator==(const ShowHelp&) const = default;
};
// Restarts the board.
struct Restart {
    bool operator==(const Restart&) const = default;
};
// Restarts the board and runs its main.py.
struct RunMain {
    bool operator==(const RunMain&) const = default;
};
// Runs a text at the board's prompt.
struct Prompt {
    std::string text;
    bool operator==(const Prompt&) const = default;
};
using Wait = std::chrono::duration<double>;
using BatchCommand = std::variant<const PluginCommand*, ShowHelp, Restart, RunMain, Prompt, Wait>;

// The options of the command line.
struct Options {
    std::string plugin;  // Empty for the plug-in that is bundled with the editor.
    bool virtualBoard = false;
    std::string boardFolder;  // Empty for the default folder.
    std::string board;        // The serial port; empty for the one that the tool finds.
    std::string mount;        // The folder that is mounted while a document runs; may be empty.
    bool input = false;       // Forward standard input to programs.
    std::string target;
    std::string document;
    bool batch = false;
    std::vector<BatchCommand> commands;
    std::vector<std::string> files;  // To be opened in the editor.
    bool showBoard = false;          // Show the board panel.
    bool openDeviceWindow = false;   // Open only the Device window.
    std::optional<Appearance> appearance;
    bool version = false;
    bool help = false;
};

// The text that --help prints.
std::string Usage();

// Parses the arguments without accessing files. The error is a message for the user.
std::expected<Options, std::string> ParseOptions(const std::vector<std::string>& arguments);

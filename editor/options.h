#pragma once

#include "appearance.h"

#include <chrono>
#include <expected>
#include <optional>
#include <string>
#include <variant>
#include <vector>

enum class BatchAction {
    Run,
    Stop,
    Upload,
    UploadAsMain,
    List,
    Status,
    CopyTemplate,
    Help,
};

using Wait = std::chrono::duration<double>;
using BatchCommand = std::variant<BatchAction, Wait>;

// What the command line asks for.
struct Options {
    std::string plugin;  // empty: the one that comes with the editor
    bool virtualBoard = false;
    std::string boardFolder;  // empty: the user's own
    std::string target;
    std::string document;
    bool batch = false;
    std::vector<BatchCommand> commands;
    std::vector<std::string> files;  // to open in the editor
    bool openDeviceWindow = false;   // and nothing else
    std::optional<Appearance> appearance;
    bool version = false;
    bool help = false;
};

extern const char* const kUsage;

// The error is a sentence for the user. Looks at no file.
std::expected<Options, std::string> ParseOptions(const std::vector<std::string>& arguments);

#include "options.h"

#include <getopt.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

constexpr const char* kUsage =
    "usage: quilp-editor [OPTION]... [FILE]...\n"
    "       quilp-editor [OPTION]... --batch COMMAND...\n"
    "       quilp-editor [OPTION]... --open-device-window\n"
    "Open FILEs in the editor. Without FILE, reopen the documents of the last session.\n"
    "  --document FILE        use FILE as the front document\n"
    "  --target FILE          use FILE as the target, which runs if the document is not Python\n"
    "  --virtual-board[=DIR]  attach a virtual board, and keep its files in DIR\n"
    "  --board PORT           use the board at the serial port PORT, and no other\n"
    "  --plugin FILE          load the plug-in FILE instead of the bundled one\n"
    "  --show-board           show the panel with the virtual board's LED and pins\n"
    "  --open-device-window   open only the Device window\n"
    "  --batch                perform the commands without opening windows\n"
    "  --input                forward standard input to programs that run on the board (--batch)\n"
    "  --mount DIR            mount the folder DIR on the board during run (--batch)\n"
    "  --appearance NAME      use the light or dark theme, or system to follow the desktop\n"
    "  --version              print the version and exit\n"
    "  --help                 print this help and exit\n"
    "Commands:";

constexpr std::string_view kPrompt = "prompt=";
constexpr std::string_view kWait = "wait=";
constexpr double kMaxWait = 86400;  // seconds

std::optional<Wait> ParseWait(const std::string& seconds)
{
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(seconds.c_str(), &end);
    const bool isNumber = !seconds.empty() && *end == '\0' && errno == 0;
    if (!isNumber || !std::isfinite(value) || value < 0 || value > kMaxWait) {
        return std::nullopt;
    }
    return Wait(value);
}

std::optional<BatchCommand> ParseCommand(const std::string& argument)
{
    if (argument.starts_with(kWait)) {
        const auto wait = ParseWait(argument.substr(kWait.size()));
        return wait ? std::optional<BatchCommand>(*wait) : std::nullopt;
    }
    if (argument.starts_with(kPrompt)) {
        return Prompt{argument.substr(kPrompt.size())};
    }
    if (argument == "help") {
        return ShowHelp();
    }
    if (argument == "restart") {
        return Restart();
    }
    if (argument == "main") {
        return RunMain();
    }
    const auto* const command = FindCommandByBatchName(argument);
    return command != nullptr ? std::optional<BatchCommand>(command) : std::nullopt;
}

// With "-" in its short options, getopt returns this value for arguments that are not options.
constexpr int kPositional = 1;

const std::array<option, 14> kLongOptions{{
    {"document", required_argument, nullptr, 'd'},
    {"target", required_argument, nullptr, 't'},
    {"virtual-board", optional_argument, nullptr, 'v'},
    {"board", required_argument, nullptr, 's'},
    {"plugin", required_argument, nullptr, 'p'},
    {"show-board", no_argument, nullptr, 'l'},
    {"open-device-window", no_argument, nullptr, 'w'},
    {"appearance", required_argument, nullptr, 'a'},
    {"batch", no_argument, nullptr, 'b'},
    {"input", no_argument, nullptr, 'i'},
    {"mount", required_argument, nullptr, 'm'},
    {"version", no_argument, nullptr, 'V'},
    {"help", no_argument, nullptr, 'h'},
    {},
}};

// Returns false for an unknown option or a missing or invalid value.
bool ApplyOption(Options& options, int option, const char* argument)
{
    switch (option) {
        case 'd': options.document = argument; return true;
        case 't': options.target = argument; return true;
        case 's': options.board = argument; return true;
        case 'm': options.mount = argument; return true;
        case 'i': options.input = true; return true;
        case 'p': options.plugin = argument; return true;
        case 'b': options.batch = true; return true;
        case 'l': options.showBoard = true; return true;
        case 'w': options.openDeviceWindow = true; return true;
        case 'V': options.version = true; return true;
        case 'h': options.help = true; return true;
        case 'a':
            options.appearance = ParseAppearance(argument);
            return options.appearance.has_value();
        case 'v':
            options.virtualBoard = true;
            options.boardFolder = argument != nullptr ? argument : "";
            return true;
        case kPositional: options.files.emplace_back(argument); return true;
        default: return false;
    }
}

// Arguments that are not options are commands in batch mode, and files otherwise. The error is a
// message for the user.
std::expected<void, std::string> ParsePositional(Options& options)
{
    if (!options.batch) {
        return {};
    }
    for (const auto& argument : std::exchange(options.files, {})) {
        const auto command = ParseCommand(argument);
        if (!command) {
            return std::unexpected("unknown command: " + argument);
        }
        options.commands.push_back(*command);
    }
    return {};
}

std::expected<void, std::string> Validate(const Options& options)
{
    if (options.openDeviceWindow && (options.batch || !options.files.empty())) {
        return std::unexpected("--open-device-window cannot be combined with files or commands");
    }
    if (options.showBoard && (options.batch || options.openDeviceWindow)) {
        return std::unexpected("--show-board requires the editor's window");
    }
    if (!options.batch && (options.input || !options.mount.empty())) {
        return std::unexpected("--input and --mount require --batch");
    }
    if (options.virtualBoard && !options.board.empty()) {
        return std::unexpected("--board cannot be combined with --virtual-board");
    }
    if (options.batch && options.commands.empty() && !options.help && !options.version) {
        return std::unexpected("--batch requires at least one command");
    }
    return {};
}

}  // namespace

std::string Usage()
{
    std::string usage = kUsage;
    for (const auto& command : kPluginCommands) {
        if (!command.batchName.empty()) {
            usage.append(" ").append(command.batchName).append(",");
        }
    }
    return usage +
           " help,\n"
           "restart (the board), main (restart, then run the board's main.py), prompt=TEXT (run "
           "TEXT "
           "at\nthe board's prompt), and wait=SECONDS, which continues after that time even if a "
           "command is\nstill running.\n";
}

std::expected<Options, std::string> ParseOptions(const std::vector<std::string>& arguments)
{
    std::vector<char*> words{const_cast<char*>("quilp-editor")};
    for (const auto& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    const int count = static_cast<int>(words.size()) - 1;

    Options options;
    optind = 0;  // Restarts the scan; 0 also resets glibc's internal state.
    opterr = 0;
    for (;;) {
        const auto at = static_cast<std::size_t>(std::max(optind, 1));
        const int c = getopt_long(count, words.data(), "-", kLongOptions.data(), nullptr);
        if (c == -1) {
            break;
        }
        if (!ApplyOption(options, c, optarg)) {
            return std::unexpected(std::string("unknown option, or missing or invalid value: ") +
                                   words[at]);
        }
    }
    // The arguments after "--".
    options.files.insert(options.files.end(), words.begin() + optind, words.end() - 1);
    if (const auto sorted = ParsePositional(options); !sorted) {
        return std::unexpected(sorted.error());
    }
    if (const auto checked = Validate(options); !checked) {
        return std::unexpected(checked.error());
    }
    return options;
}

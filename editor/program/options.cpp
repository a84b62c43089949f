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
    "Opens the files in the editor; without files, those that were open last.\n"
    "  --document FILE        the front document\n"
    "  --target FILE          the current target, which runs when the document is not Python\n"
    "  --virtual-board[=DIR]  attach a virtual board, with its files in DIR\n"
    "  --plugin FILE          load this plug-in instead of the bundled one\n"
    "  --open-device-window   show only the window of the board's files\n"
    "  --appearance NAME      light, dark, or system to follow the desktop\n"
    "  --version              show the version\n"
    "  --help                 show this text\n"
    "Commands:";

constexpr std::string_view kHelp = "help";
constexpr std::string_view kWait = "wait=";
constexpr double kMaxWait = 86400;  // seconds

std::optional<Wait> ParseWait(const std::string& seconds)
{
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(seconds.c_str(), &end);
    const bool whole = !seconds.empty() && *end == '\0' && errno == 0;
    if (!whole || !std::isfinite(value) || value < 0 || value > kMaxWait) {
        return std::nullopt;
    }
    return Wait(value);
}

std::optional<BatchCommand> ParseCommand(const std::string& word)
{
    if (word.starts_with(kWait)) {
        const auto wait = ParseWait(word.substr(kWait.size()));
        return wait ? std::optional<BatchCommand>(*wait) : std::nullopt;
    }
    if (word == kHelp) {
        return ShowHelp();
    }
    const auto* const command = FindCommandByBatchName(word);
    return command != nullptr ? std::optional<BatchCommand>(command) : std::nullopt;
}

// What getopt returns for a word that is no option when it is to keep the order ("-").
constexpr int kWord = 1;

const std::array<option, 10> kLongOptions{{
    {"document", required_argument, nullptr, 'd'},
    {"target", required_argument, nullptr, 't'},
    {"virtual-board", optional_argument, nullptr, 'v'},
    {"plugin", required_argument, nullptr, 'p'},
    {"open-device-window", no_argument, nullptr, 'w'},
    {"appearance", required_argument, nullptr, 'a'},
    {"batch", no_argument, nullptr, 'b'},
    {"version", no_argument, nullptr, 'V'},
    {"help", no_argument, nullptr, 'h'},
    {},
}};

// False for what is neither an option nor a command, or lacks its value.
bool Take(Options& options, int option, const char* argument)
{
    switch (option) {
        case 'd': options.document = argument; return true;
        case 't': options.target = argument; return true;
        case 'p': options.plugin = argument; return true;
        case 'b': options.batch = true; return true;
        case 'w': options.openDeviceWindow = true; return true;
        case 'V': options.version = true; return true;
        case 'h': options.help = true; return true;
        case 'a':
            options.appearance = AppearanceNamed(argument);
            return options.appearance.has_value();
        case 'v':
            options.virtualBoard = true;
            options.boardFolder = argument != nullptr ? argument : "";
            return true;
        case kWord: options.files.emplace_back(argument); return true;
        default: return false;
    }
}

// What stands without an option in front of it: commands of a batch, files otherwise. The error is
// a sentence.
std::expected<void, std::string> SortWords(Options& options)
{
    if (!options.batch) {
        return {};
    }
    for (const auto& word : std::exchange(options.files, {})) {
        const auto command = ParseCommand(word);
        if (!command) {
            return std::unexpected(word + " is not a command");
        }
        options.commands.push_back(*command);
    }
    return {};
}

std::expected<void, std::string> Check(const Options& options)
{
    if (options.openDeviceWindow && (options.batch || !options.files.empty())) {
        return std::unexpected("--open-device-window goes without files and commands");
    }
    if (options.batch && options.commands.empty() && !options.help && !options.version) {
        return std::unexpected("--batch needs at least one command");
    }
    return {};
}

}  // namespace

std::string Usage()
{
    std::string usage = kUsage;
    for (const auto& command : kPluginCommands) {
        if (!command.batchWord.empty()) {
            usage.append(" ").append(command.batchWord).append(",");
        }
    }
    return usage +
           " help, and\n"
           "wait=SECONDS, which continues after that time although a command still runs.\n";
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
    optind = 0;  // Begins anew, also in glibc's sense.
    opterr = 0;
    for (;;) {
        const auto at = static_cast<std::size_t>(std::max(optind, 1));
        const int c = getopt_long(count, words.data(), "-", kLongOptions.data(), nullptr);
        if (c == -1) {
            break;
        }
        if (!Take(options, c, optarg)) {
            return std::unexpected(std::string(words[at]) +
                                   " is not an option, or lacks its value");
        }
    }
    options.files.insert(options.files.end(), words.begin() + optind, words.end() - 1);  // "--".
    if (const auto sorted = SortWords(options); !sorted) {
        return std::unexpected(sorted.error());
    }
    if (const auto checked = Check(options); !checked) {
        return std::unexpected(checked.error());
    }
    return options;
}

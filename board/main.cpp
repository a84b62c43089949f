// virtual-board: a MicroPython board without hardware.

#include "board.h"
#include "descriptors.h"
#include "pins_path.h"
#include "process_setup.h"

#include <getopt.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>

namespace {

constexpr const char* kUsage =
    "usage: virtual-board [--link PATH] [--pins PATH] [--heap SIZE] [--parent PID] DIR\n"
    "Runs a virtual MicroPython board with the folder DIR as its file system, and prints the path\n"
    "of its serial device when the board is ready. SIGUSR1 unplugs the board, SIGUSR2 plugs it in\n"
    "again, and SIGINT and SIGTERM terminate the program.\n"
    "  --link PATH    make PATH a symbolic link to the serial device while the board is plugged "
    "in\n"
    "  --pins PATH    serve the state of the pins on the local socket PATH; by default on that of\n"
    "                 the link with \".pins\" appended\n"
    "  --heap SIZE    the memory for programs, from 64K to 1024M; 256K by default\n"
    "  --parent PID   exit when the parent process PID exits, and remove the folder of the link\n"
    "  --version      show the version and exit\n"
    "  --help         show this help and exit\n";

int commandsWriteEnd = -1;

void ForwardSignal(int number)
{
    const char command = number == SIGUSR1 ? 'u' : number == SIGUSR2 ? 'p' : 'q';
    const int error = errno;
    std::ignore = write(commandsWriteEnd, &command, 1);
    errno = error;
}

// Turns signals into bytes on a pipe, which the board's loop reads.
int CommandsFromSignals()
{
    std::array<int, 2> ends{-1, -1};
    if (!MakePipe(ends)) {
        return -1;
    }
    commandsWriteEnd = ends[1];
    SetNonBlocking(commandsWriteEnd);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2}) {
        HandleUnlessIgnored(number, ForwardSignal);
    }
    return ends[0];
}

// False if the text could not be printed.
bool Print(const std::string& text)
{
    return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
}

[[noreturn]] void PrintAndExit(const std::string& text)
{
    std::exit(Print(text) ? 0 : 1);
}

struct Arguments {
    BoardOptions board;
    std::string pins;  // The path of the socket that serves the pins; may be empty.
    bool removesLinkFolder = false;
};

constexpr std::size_t kLeastHeap = 64UL << 10;
constexpr std::size_t kLargestHeap = 1024UL << 20;

[[noreturn]] void RefuseUsage()
{
    std::fputs(kUsage, stderr);
    std::exit(2);
}

// A number of bytes; K and M stand for units of 1024 and 1024 * 1024 bytes. Exits on an error.
std::size_t ParseHeap(const char* text)
{
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), size);
    const std::string_view unit(end);
    const int shift = unit == "M" ? 20 : unit == "K" ? 10 : 0;
    const bool isNumber = error == std::errc() && (unit.empty() || shift != 0);
    if (!isNumber || size > (kLargestHeap >> shift) || size << shift < kLeastHeap) {
        std::fprintf(stderr, "virtual-board: invalid size of the heap: %s\n", text);
        RefuseUsage();
    }
    return size << shift;
}

// Exits on a usage error.
Arguments ParseArguments(int argc, char** argv)
{
    Arguments arguments;
    const std::array<option, 7> longOptions{{{"link", required_argument, nullptr, 'l'},
                                             {"pins", required_argument, nullptr, 'i'},
                                             {"heap", required_argument, nullptr, 'm'},
                                             {"parent", required_argument, nullptr, 'p'},
                                             {"version", no_argument, nullptr, 'V'},
                                             {"help", no_argument, nullptr, 'h'},
                                             {}}};
    for (int c = 0; (c = getopt_long(argc, argv, "", longOptions.data(), nullptr)) != -1;) {
        if (c == 'l') {
            arguments.board.link = optarg;
        } else if (c == 'i') {
            arguments.pins = optarg;
        } else if (c == 'm') {
            arguments.board.heap = ParseHeap(optarg);
        } else if (c == 'p') {
            SignalOnParentExit(static_cast<pid_t>(std::atol(optarg)), SIGTERM);
            arguments.removesLinkFolder = true;
        } else if (c == 'V') {
            PrintAndExit("virtual-board " QUILP_VERSION "\n");
        } else if (c == 'h') {
            PrintAndExit(kUsage);
        } else {
            RefuseUsage();
        }
    }
    if (optind + 1 != argc) {
        RefuseUsage();
    }
    arguments.board.folder = argv[optind];
    return arguments;
}

std::filesystem::path ProgramFolder()
{
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path(".") : self.parent_path();
}

std::string FromEnvironment(const char* name, const std::string& defaultValue)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : defaultValue;
}

// By default beside the link, where the editor finds them. A board without them is useful, too.
std::expected<void, std::string> ServePins(Board& board, const Arguments& arguments)
{
    if (!arguments.pins.empty()) {
        return board.ServePins(arguments.pins);
    }
    if (const std::string& link = arguments.board.link; !link.empty()) {
        if (const auto served = board.ServePins(PinsPathFor(link)); !served) {
            std::fprintf(stderr, "virtual-board: warning: %s\n", served.error().c_str());
        }
    }
    return {};
}

std::expected<void, std::string> RunBoard(const Arguments& arguments, int commands)
{
    Board board(arguments.board);
    if (const auto opened = board.Open(); !opened) {
        return opened;
    }
    if (const auto served = ServePins(board, arguments); !served) {
        return served;
    }
    if (const auto plugged = board.Plug(); !plugged) {
        return plugged;
    }
    if (!board.reachable().empty()) {
        std::fprintf(stderr, "virtual-board: warning: programs can reach %s\n",
                     board.reachable().c_str());
    }
    if (!Print(board.devicePath() + "\n")) {
        return std::unexpected("cannot print the path of the serial device");
    }
    return board.Run(commands);
}

int Fail(const std::string& message)
{
    std::fprintf(stderr, "virtual-board: %s\n", message.c_str());
    return 1;
}

int RunProgram(int argc, char** argv)
{
    PrepareProcess();
    const int commands = CommandsFromSignals();
    Arguments arguments = ParseArguments(argc, argv);
    BoardOptions& options = arguments.board;
    std::error_code error;
    std::filesystem::create_directories(options.folder, error);
    if (!error) {
        options.folder = std::filesystem::canonical(options.folder, error).string();
    }
    if (error) {
        return Fail(options.folder + ": " + error.message());
    }
    // The path of a bundled MicroPython is relative to this program; that of an installed one is
    // absolute.
    const auto micropython = ProgramFolder() / QUILP_MICROPYTHON;
    options.interpreter.program = FromEnvironment("QUILP_MICROPYTHON", micropython.string());
    options.interpreter.script = (ProgramFolder() / QUILP_INTERPRETER_SCRIPT).string();

    const auto served = RunBoard(arguments, commands);
    if (arguments.removesLinkFolder) {
        std::filesystem::remove(std::filesystem::path(arguments.board.link).parent_path(), error);
    }
    return served ? 0 : Fail(served.error());
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return RunProgram(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}

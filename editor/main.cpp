// quilp-editor: the stand-alone host of the plug-in.

#include "appearance.h"
#include "batch.h"
#include "descriptors.h"
#include "editor_host.h"
#include "options.h"
#include "plugin_module.h"
#include "protect.h"
#include "runtime.h"
#include "standard_output.h"
#include "virtual_board.h"

#include <QApplication>
#include <QSocketNotifier>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <tuple>

namespace {

enum ExitStatus : int { kSuccess = 0, kFailure = 1, kUsageError = 2, kNoPlugin = 3 };

// Readable once a signal has asked the program to end.
std::array<int, 2> signalPipe{-1, -1};
volatile std::sig_atomic_t lastSignal = 0;

int Complain(const std::string& message, int status)
{
    std::fprintf(stderr, "quilp-editor: %s\n", message.c_str());
    return status;
}

void PassOnSignal(int number)
{
    const int error = errno;
    lastSignal = number;
    std::ignore = write(signalPipe[1], "s", 1);
    errno = error;
}

// From here on a signal that asks to end makes the signal pipe readable.
void CatchSignals()
{
    if (!MakePipe(signalPipe)) {
        return;
    }
    SetNonBlocking(signalPipe[1]);
    struct sigaction action {};
    action.sa_handler = PassOnSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
}

// The full path of a file that can be read. The error is a sentence.
std::expected<std::string, std::string> ReadableFile(const std::string& name)
{
    std::error_code error;
    // "link/.." is not what it looks like, so such a path stays as it is.
    const auto full = std::filesystem::absolute(name, error);
    const bool climbs = std::find(full.begin(), full.end(), "..") != full.end();
    const auto path = climbs ? full : full.lexically_normal();
    if (std::filesystem::is_directory(path, error)) {
        return std::unexpected(path.string() + " is a folder");
    }
    if (access(path.c_str(), R_OK) != 0) {
        return std::unexpected(path.string() + " cannot be read: " + std::strerror(errno));
    }
    return path.string();
}

struct Files {
    std::string document;
    std::string target;
};

std::expected<Files, std::string> FindFiles(const Options& options)
{
    Files files;
    for (const auto& [name, path] : {std::pair(&options.document, &files.document),
                                     std::pair(&options.target, &files.target)}) {
        if (name->empty()) {
            continue;
        }
        auto found = ReadableFile(*name);
        if (!found) {
            return std::unexpected(found.error());
        }
        *path = *found;
    }
    return files;
}

// None when the options ask for none. The error is a sentence.
std::expected<std::optional<VirtualBoard>, std::string> StartBoard(const Options& options)
{
    if (!options.virtualBoard) {
        return std::nullopt;
    }
    const std::string folder = QCoreApplication::applicationDirPath().toStdString();
    auto board = VirtualBoard::Start(folder + "/virtual-board", options.boardFolder.empty()
                                                                    ? DefaultBoardFolder()
                                                                    : options.boardFolder);
    if (!board) {
        return std::unexpected(board.error());
    }
    return std::move(*board);
}

int RunBatch(const Options& options, const Files& files, const PluginModule& plugin)
{
    CatchSignals();
    Runtime runtime;
    Batch* running = nullptr;
    StandardOutput output(signalPipe[0]);
    EditorHost host(plugin, runtime, [&](const std::string& text) {
        if (!output.Write(text) && running != nullptr) {
            if (!output.error().empty()) {
                Complain(output.error(), kFailure);
            }
            std::exchange(running, nullptr)->Interrupt(kFailure);
        }
    });
    host.SetDocument(files.document);
    host.SetTarget(files.target);
    if (const auto started = host.Start(); !started) {
        return Complain(started.error(), kNoPlugin);
    }
    Batch batch(host, runtime, plugin, options.commands, QCoreApplication::exit);
    running = &batch;
    QSocketNotifier onSignal(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&onSignal, &QSocketNotifier::activated, [&] {
        // The byte stays where it is, so that text no longer waits for its reader.
        onSignal.setEnabled(false);
        batch.Interrupt(128 + lastSignal);
    });
    batch.Start();
    const int status = QCoreApplication::exec();
    runtime.ShutDown();
    return status;
}

// The Device window alone. What belongs into the worksheet goes to standard output.
int RunDeviceWindow(const Options& options, const PluginModule& plugin)
{
    SetAppearance(options.appearance);
    CatchSignals();
    Runtime runtime;
    StandardOutput output(signalPipe[0]);
    EditorHost host(plugin, runtime, [&](const std::string& text) { output.Write(text); });
    if (const auto started = host.Start(); !started) {
        return Complain(started.error(), kNoPlugin);
    }
    SetErrorHandler([](const std::string& error) { Complain(error, kFailure); });
    runtime.SetWindowClosedHandler(QCoreApplication::quit);
    QSocketNotifier onSignal(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&onSignal, &QSocketNotifier::activated, [&] {
        onSignal.setEnabled(false);
        runtime.CloseWindows();
        QCoreApplication::quit();
    });
    bool opened = false;
    Protect([&] { opened = host.PerformFromMenu("Open Device window"); });
    const int status = opened ? QCoreApplication::exec() : kFailure;
    runtime.ShutDown();
    return status;
}

// Qt itself would abort without one.
bool HasScreen()
{
#ifdef __linux__
    constexpr std::array kVariables{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    return std::ranges::any_of(kVariables, [](const char* name) {
        const char* const value = std::getenv(name);
        return value != nullptr && *value != '\0';
    });
#else
    return true;
#endif
}

// Windows need more of the application than batches do.
std::unique_ptr<QCoreApplication> MakeApplication(const Options& options, int& argc, char** argv)
{
    if (options.openDeviceWindow) {
        return std::make_unique<QApplication>(argc, argv);
    }
    return std::make_unique<QCoreApplication>(argc, argv);
}

int Run(const Options& options, const Files& files)
{
    const std::string ownPlugin = QCoreApplication::applicationDirPath().toStdString() +
                                  "/../lib/quilp/Quilp.bundle/quilp.so";
    const auto plugin = PluginModule::Load(options.plugin.empty() ? ownPlugin : options.plugin);
    if (!plugin) {
        return Complain(plugin.error(), kNoPlugin);
    }
    const auto board = StartBoard(options);
    if (!board) {
        return Complain(board.error(), kFailure);
    }
    return options.openDeviceWindow ? RunDeviceWindow(options, *plugin)
                                    : RunBatch(options, files, *plugin);
}

}  // namespace

int main(int argc, char** argv)
{
    signal(SIGPIPE, SIG_IGN);
    const auto options = ParseOptions({argv + 1, argv + argc});
    if (!options) {
        return Complain(options.error() + "\n" + kUsage, kUsageError);
    }
    if (options->help) {
        std::fputs(kUsage, stdout);
        return kSuccess;
    }
    if (options->version) {
        std::puts("quilp-editor " QUILP_VERSION);
        return kSuccess;
    }
    const auto files = FindFiles(*options);
    if (!files) {
        return Complain(files.error(), kUsageError);
    }
    if (options->openDeviceWindow && !HasScreen()) {
        return Complain("there is no screen to show a window on: DISPLAY is not set", kFailure);
    }
    const auto application = MakeApplication(*options, argc, argv);
    return Run(*options, *files);
}

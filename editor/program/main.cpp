// quilp-editor: the stand-alone host of the plug-in.

#include "file_worker.h"
#include "options.h"
#include "plugin_module.h"
#include "process_setup.h"
#include "run_modes.h"
#include "standard_output.h"
#include "virtual_board.h"

#include <QApplication>
#include <QIcon>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>

namespace {

// The full path of a readable file. The error is a message for the user.
std::expected<std::string, std::string> ReadableFile(const std::string& name)
{
    std::error_code error;
    // A path with ".." is not normalized: in "link/.." the link may lead to another folder.
    const auto full = std::filesystem::absolute(name, error);
    const bool hasParent = std::find(full.begin(), full.end(), "..") != full.end();
    const auto path = hasParent ? full : full.lexically_normal();
    if (std::filesystem::is_directory(path, error)) {
        return std::unexpected(path.string() + " is a folder");
    }
    if (access(path.c_str(), R_OK) != 0) {
        return std::unexpected(path.string() + " cannot be read: " + std::strerror(errno));
    }
    return path.string();
}

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

// For the board's tool, which this process's children start. The error is a message for the user.
std::expected<void, std::string> SetToolEnvironment(const Options& options)
{
    std::error_code error;
    if (!options.mount.empty() && !std::filesystem::is_directory(options.mount, error)) {
        return std::unexpected(options.mount + " is not a folder");
    }
    if (options.virtualBoard) {
        unsetenv("QUILP_BOARD");
    }
    for (const auto& [name, path] :
         {std::pair("QUILP_BOARD", &options.board), std::pair("QUILP_MOUNT", &options.mount)}) {
        if (!path->empty()) {
            setenv(name, std::filesystem::absolute(*path, error).c_str(), 1);
        }
    }
    return {};
}

// None if the options request no board. The error is a message for the user.
std::expected<std::optional<VirtualBoard>, std::string> StartBoard(const Options& options)
{
    if (!options.virtualBoard) {
        return std::nullopt;
    }
    auto board = VirtualBoard::Start(BoardProgram(), BoardFolder(options));
    if (!board) {
        return std::unexpected(board.error());
    }
    if (const auto isReady = board->WaitUntilReady(); !isReady) {
        return std::unexpected(isReady.error());
    }
    return std::move(*board);
}

// Whether the environment names a display.
bool HasDisplay()
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

// Qt aborts the program if it cannot use the display; its warnings say why.
void ExitOnFatalMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtFatalMsg) {
        std::_Exit(
            ReportError("cannot open a window; use --batch to run without windows", kFailure));
    }
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

// A batch needs no windows, and therefore no display.
std::unique_ptr<QCoreApplication> MakeApplication(const Options& options, char** argv)
{
    static int argc = 1;  // Hides the options from Qt, whose own ones include "-plugin".
    if (options.batch) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    const auto previous = qInstallMessageHandler(ExitOnFatalMessage);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(previous);
    QIcon icon(":/quilp-32.png");
    icon.addFile(":/quilp-128.png");
    QApplication::setWindowIcon(icon);
    return application;
}

int Run(const Options& options, const Files& files)
{
    const std::string ownPlugin = QCoreApplication::applicationDirPath().toStdString() +
                                  "/../lib/quilp/Quilp.bundle/quilp.so";
    const auto plugin = PluginModule::Load(options.plugin.empty() ? ownPlugin : options.plugin);
    if (!plugin) {
        return ReportError(plugin.error(), kNoPlugin);
    }
    if (!options.batch && !options.openDeviceWindow) {
        return RunEditor(options, files, *plugin);  // It starts the board itself.
    }
    const auto board = StartBoard(options);
    if (!board) {
        return ReportError(board.error(), kFailure);
    }
    return options.openDeviceWindow ? RunDeviceWindow(options, *plugin)
                                    : RunBatch(options, files, *plugin);
}

int Print(const std::string& text)
{
    StandardOutput output(-1);
    if (output.Write(text)) {
        return kSuccess;
    }
    return output.error().empty() ? kFailure : ReportError(output.error(), kFailure);
}

}  // namespace

int main(int argc, char** argv)
{
    PrepareProcess();
    const auto options = ParseOptions({argv + 1, argv + argc});
    if (!options) {
        return ReportError(options.error() + "\n" + Usage(), kUsageError);
    }
    if (options->help) {
        return Print(Usage());
    }
    if (options->version) {
        return Print("quilp-editor " QUILP_VERSION "\n");
    }
    const auto files = FindFiles(*options);
    if (!files) {
        return ReportError(files.error(), kUsageError);
    }
    if (const auto set = SetToolEnvironment(*options); !set) {
        return ReportError(set.error(), kUsageError);
    }
    if (!options->batch && !HasDisplay()) {
        return ReportError(
            "cannot open a window because DISPLAY is not set; use --batch to run without windows",
            kFailure);
    }
    const auto application = MakeApplication(*options, argv);
    const int status = Run(*options, *files);
    if (FileWorker::HasAbandonedThreads()) {
        std::fflush(nullptr);
        _exit(status);
    }
    return status;
}

#include "main_window.h"
#include "path_text.h"
#include "plugin_settings.h"
#include "run_modes.h"
#include "session.h"
#include "signals.h"
#include "standard_output.h"

#include <QApplication>
#include <QStringList>
#include <QTimer>

namespace {

Appearance AppearanceOfEditor(const UserFolders& folders)
{
    Shortcuts ignored({}, {});
    const auto loaded = LoadSession(folders.editorSettings(), ignored);
    if (!loaded.problem.isEmpty()) {
        ReportError(loaded.problem.toStdString(), kFailure);
    }
    return loaded.session.appearance;
}

}  // namespace

int RunEditor(const Options& options, const Files& files, const PluginModule& plugin)
{
    Signals signals;
    Runtime runtime;
    MainWindow window(plugin, runtime,
                      {UserFolders::OfUser(), BoardProgram(), BoardFolder(options)});
    runtime.handlers.error = [&window](const std::string& error) {
        window.ReportPluginError(error);
    };
    if (const auto started = window.Start(); !started) {
        runtime.ShutDown();  // Before the window, which its tasks may use.
        return ReportError(started.error(), kNoPlugin);
    }
    if (options.appearance) {
        SetAppearance(*options.appearance);
    }
    if (!files.target.empty()) {
        window.project().SetTarget(PathToText(files.target));
    }
    if (options.showBoard) {
        window.ShowBoardPanel();
    }
    QStringList documents;
    for (const auto& path : options.files) {
        documents.append(PathToText(path));
    }
    if (!files.document.empty()) {
        documents.append(PathToText(files.document));
    }
    window.OpenFiles(documents);
    window.show();
    int status = kSuccess;
    // exit rather than quit, which would try to close the window again.
    QObject::connect(&window, &MainWindow::Closed, [&status] { QCoreApplication::exit(status); });
    signals.SetHandler([&](int number) {
        status = 128 + number;
        window.QuitWithoutAsking();
    });
    if (options.virtualBoard) {
        // Show the window first.
        QTimer::singleShot(0, &window, [&window] { window.board().AttachVirtualBoard(); });
    }
    status = QCoreApplication::exec();
    runtime.ShutDown();
    return status;
}

int RunDeviceWindow(const Options& options, const PluginModule& plugin)
{
    const auto folders = UserFolders::OfUser();
    SetAppearance(options.appearance ? *options.appearance : AppearanceOfEditor(folders));
    PluginSettings settings(folders.pluginSettings());
    if (const auto problem = settings.Load()) {
        ReportError(*problem, kFailure);
    }
    Signals signals;
    Runtime runtime;
    StandardOutput output(signals.fd());
    PluginHost host(plugin, runtime, [&](const std::string& text) { output.Write(text); });
    host.SetSettings(&settings);
    runtime.handlers.error = [](const std::string& error) { ReportError(error, kFailure); };
    runtime.handlers.warning = runtime.handlers.error;
    if (const auto started = host.Start(); !started) {
        return ReportError(started.error(), kNoPlugin);
    }
    int status = kSuccess;
    runtime.handlers.windowClosed = [&status] { QCoreApplication::exit(status); };
    signals.SetHandler([&](int number) {
        status = 128 + number;
        runtime.CloseWindows();
        QCoreApplication::exit(status);
    });
    status =
        host.PerformFromMenu(std::string(kOpenDeviceWindow)) ? QCoreApplication::exec() : kFailure;
    if (const auto saved = host.SaveSettings(); !saved) {
        ReportError(saved.error(), kFailure);
    }
    runtime.ShutDown();
    return status;
}

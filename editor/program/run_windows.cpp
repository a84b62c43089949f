#include "main_window.h"
#include "path_text.h"
#include "run_modes.h"
#include "signals.h"
#include "standard_output.h"

#include <QApplication>
#include <QStringList>
#include <QTimer>

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
    QStringList documents;
    for (const auto& path : options.files) {
        documents.append(PathToText(path));
    }
    if (!files.document.empty()) {
        documents.append(PathToText(files.document));
    }
    window.OpenFiles(documents);
    window.show();
    // exit rather than quit, which would try to close the window again.
    QObject::connect(&window, &MainWindow::Closed, [] { QCoreApplication::exit(); });
    signals.SetHandler([&window](int) { window.QuitWithoutAsking(); });
    if (options.virtualBoard) {
        // Show the window first.
        QTimer::singleShot(0, &window, [&window] { window.board().AttachVirtualBoard(); });
    }
    const int status = QCoreApplication::exec();
    runtime.ShutDown();
    return status;
}

int RunDeviceWindow(const Options& options, const PluginModule& plugin)
{
    SetAppearance(options.appearance.value_or(Appearance::System));
    Signals signals;
    Runtime runtime;
    StandardOutput output(signals.fd());
    PluginHost host(plugin, runtime, [&](const std::string& text) { output.Write(text); });
    runtime.handlers.error = [](const std::string& error) { ReportError(error, kFailure); };
    if (const auto started = host.Start(); !started) {
        return ReportError(started.error(), kNoPlugin);
    }
    runtime.handlers.windowClosed = QCoreApplication::quit;
    signals.SetHandler([&runtime](int) {
        runtime.CloseWindows();
        QCoreApplication::quit();
    });
    const int status =
        host.PerformFromMenu(std::string(kOpenDeviceWindow)) ? QCoreApplication::exec() : kFailure;
    runtime.ShutDown();
    return status;
}

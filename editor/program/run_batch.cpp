#include "batch.h"
#include "plugin_bundle.h"
#include "run_modes.h"
#include "signals.h"
#include "standard_input.h"
#include "standard_output.h"

#include <QCoreApplication>

#include <optional>
#include <utility>

int RunBatch(const Options& options, const Files& files, const PluginModule& plugin)
{
    Signals signals;
    Runtime runtime;
    int failure = kSuccess;
    runtime.handlers.error = [&failure](const std::string& error) {
        failure = ReportError(error, kFailure);
    };
    runtime.handlers.warning = [](const std::string& text) { ReportError(text, kFailure); };
    Batch* running = nullptr;
    StandardOutput output(signals.fd());
    const auto print = [&](const std::string& text) {
        if (!output.Write(text) && running != nullptr) {
            if (!output.error().empty()) {
                ReportError(output.error(), kFailure);
            }
            std::exchange(running, nullptr)->Interrupt(kFailure);
        }
    };
    PluginHost host(plugin, runtime, print);
    host.SetDocument(files.document);
    host.SetTarget(files.target);
    if (const auto started = host.Start(); !started) {
        return ReportError(started.error(), kNoPlugin);
    }
    BoardTool tool(runtime, ResourceFolder(plugin.bundle()) + "/mpremote/mpremote.py", print);
    std::optional<StandardInput> input;
    if (options.input) {
        input.emplace(runtime);
    }
    Batch batch(host, runtime, plugin, tool, options.commands, QCoreApplication::exit);
    running = &batch;
    signals.SetHandler([&batch](int number) { batch.Interrupt(128 + number); });
    batch.Start();
    const int status = QCoreApplication::exec();
    runtime.ShutDown();
    return status != kSuccess ? status : failure;
}

#include "batch.h"
#include "run_modes.h"
#include "signals.h"
#include "standard_output.h"

#include <QCoreApplication>

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
    PluginHost host(plugin, runtime, [&](const std::string& text) {
        if (!output.Write(text) && running != nullptr) {
            if (!output.error().empty()) {
                ReportError(output.error(), kFailure);
            }
            std::exchange(running, nullptr)->Interrupt(kFailure);
        }
    });
    host.SetDocument(files.document);
    host.SetTarget(files.target);
    if (const auto started = host.Start(); !started) {
        return ReportError(started.error(), kNoPlugin);
    }
    Batch batch(host, runtime, plugin, options.commands, QCoreApplication::exit);
    running = &batch;
    signals.SetHandler([&batch](int number) { batch.Interrupt(128 + number); });
    batch.Start();
    const int status = QCoreApplication::exec();
    runtime.ShutDown();
    return status != kSuccess ? status : failure;
}

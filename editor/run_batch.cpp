#include "batch.h"
#include "program.h"
#include "protect.h"
#include "signals.h"
#include "standard_output.h"

#include <QCoreApplication>

#include <utility>

int RunBatch(const Options& options, const Files& files, const PluginModule& plugin)
{
    SetErrorHandler([](const std::string& error) { Complain(error, kFailure); });
    Signals signals;
    Runtime runtime;
    Batch* running = nullptr;
    StandardOutput output(signals.fd());
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
    signals.SetHandler([&batch](int number) { batch.Interrupt(128 + number); });
    batch.Start();
    const int status = QCoreApplication::exec();
    runtime.ShutDown();
    return status;
}

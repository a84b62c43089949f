#include "runner.h"

#include "Bundle.h"

#include <utility>

std::shared_ptr<SimpleShell> gShell;
extern "C" {
std::string gRunningCommand;
}

std::string MPRemoteExecutable(PluginInterface* pi)
{
    return ResourcePathFromBundle(pi->bundle) + "/mpremote/mpremote.py";
}

void WriteToWorksheet(PluginInterface* pi, const std::string& text)
{
    pi->InsertInWorksheet(text, "", 1, 1, -1);
}

void Execute(PluginInterface* pi, const std::string& commandLine, const OutputHandler& onOutput,
             unique_function<void()>&& done)
{
    ResetShell();
    const OutputHandler handler = onOutput ? onOutput : OutputHandler(WriteToWorksheet);
    // The shell's thread must not touch the plug-in's state, so text and handler are copied.
    auto forward = [rebind = pi->MakeRebinder(0), handler](std::string&& text) {
        rebind([handler, text = std::move(text)](PluginInterface* p) { handler(p, text); });
    };
    gShell = std::make_shared<SimpleShell>(std::move(forward), "Execute");
    gShell->Run(commandLine, std::move(done));
}

bool Running()
{
    return gShell != nullptr;
}

void ResetShell()
{
    if (gShell) {
        gShell->Stop();
    }
}

void Stop()
{
    ResetShell();
    gShell.reset();
    gRunningCommand.clear();
}

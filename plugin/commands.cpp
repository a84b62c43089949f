#include "commands.h"

#include "Text.h"
#include "runnable.h"
#include "runner.h"

#include <string>

namespace {

// What the board calls a program that came over the line, in its tracebacks.
constexpr std::string_view kAnonymousScript = "\"<stdin>\"";

}  // namespace

bool Run(PluginInterface* pi)
{
    const EntryRef ref = RunnableDocumentOrTargeRef(pi);
    if (ref.path().empty()) {
        return false;
    }
    gRunningCommand = ref.name();
    const std::string line = MPRemoteExecutable(pi) + " run " + ref.path() + "\n";
    auto showPath = [path = ref.path()](PluginInterface* p, const std::string& text) {
        WriteToWorksheet(p, ReplaceFirst(text, kAnonymousScript, path));
    };
    Execute(pi, line, showPath, {});
    return true;
}

void Stop(PluginInterface* pi)
{
    const std::string path = pi->DocumentRef().path();
    Execute(pi, MPRemoteExecutable(pi) + " disconnect " + path + "\n", {}, {});
    Stop();
}

#include "commands.h"

#include "Text.h"
#include "device_output.h"
#include "quilp_window.h"
#include "runnable.h"
#include "runner.h"

#include <string>

namespace {

// The name in tracebacks of a program that the board received over the serial line.
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
    // The order is fixed: "disconnect" is started first and stopped in the next line. Starting it
    // stops the command that ran before, and the end of that command frees the port. "disconnect"
    // waits until that command has exited, so it is usually stopped before its program has started.
    const std::string path = pi->DocumentRef().path();
    Execute(pi, MPRemoteExecutable(pi) + " disconnect " + path + "\n", {}, {});
    Stop();
}

void Upload(PluginInterface* pi, std::string name)
{
    if (name.empty()) {
        name = RunnableDocumentOrTargeRef(pi).name();
    }
    const std::string path = RunnableDocumentOrTargeRef(pi).path();
    if (!path.empty()) {
        Execute(pi, MPRemoteExecutable(pi) + " cp " + path + " :'" + name + "'\n", {}, {});
    }
}

void List(PluginInterface* pi)
{
    Execute(pi, MPRemoteExecutable(pi) + " ls \n", {}, {});
}

void Status(PluginInterface* pi)
{
    const auto hideOtherPorts = [](PluginInterface* p, const std::string& text) {
        if (!IsPort(text) || IsBoard(text)) {
            WriteToWorksheet(p, text);
        }
    };
    Execute(pi, MPRemoteExecutable(pi) + " devs df \n", hideOtherPorts, {});
}

void DumpUpload(PluginInterface* pi)
{
    WriteToWorksheet(pi, MPRemoteExecutable(pi) + " cp '<from>':'<to>'");
}

void OpenWindow(PluginInterface* pi)
{
    QuilpWindow::ShowInstance(pi);
}

#include "commands.h"

#include "Text.h"
#include "quilp_window.h"
#include "runnable.h"
#include "runner.h"

#include <string>

namespace {

// What the board calls a program that came over the line, in its tracebacks.
constexpr std::string_view kAnonymousScript = "\"<stdin>\"";

// What a line of the tool's list of ports begins with.
constexpr std::string_view kPortPrefix = "/dev/";

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

bool IsBoard(std::string_view line)
{
    // The fixed name is a port that counts as a board whatever the tool makes of it.
    return line.starts_with(kPortPrefix) && (line.find("MicroPython") != std::string_view::npos ||
                                             line.find("usbmodem1101") != std::string_view::npos);
}

void Status(PluginInterface* pi)
{
    const auto hideOtherPorts = [](PluginInterface* p, const std::string& text) {
        if (!text.starts_with(kPortPrefix) || IsBoard(text)) {
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

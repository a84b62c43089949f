#include "device_files.h"

#include "Entry.h"
#include "Text.h"
#include "device_output.h"
#include "runner.h"

#include <memory>
#include <utility>

namespace {

OutputHandler LineByLine(const LineCallback& onLine)
{
    return [onLine](PluginInterface*, const std::string& text) {
        for (const auto& line : SplitLines(text)) {
            onLine(line);
        }
    };
}

// A chain of deletions, kept alive by the completion of the running deletion. `next` holds only a
// weak pointer, so that an interrupted chain is freed.
struct DeleteState {
    std::function<void()> next;
    std::vector<std::string> paths;
    unique_function<void()> done;
};

void DeleteLast(PluginInterface* pi, const std::shared_ptr<DeleteState>& state)
{
    if (state->paths.empty()) {
        if (auto done = std::exchange(state->done, {})) {
            done();
        }
        return;
    }
    const std::string path = std::move(state->paths.back());
    state->paths.pop_back();
    DeleteOne(pi, path, [state] { state->next(); });
}

}  // namespace

void DirectoryListing(PluginInterface* pi, const std::string& path, const LineCallback& onLine,
                      unique_function<void()>&& done)
{
    Execute(pi, MPRemoteExecutable(pi) + " ls '" + path + "'\n", LineByLine(onLine),
            std::move(done));
}

void DeleteOne(PluginInterface* pi, const std::string& path, std::function<void()> done)
{
    Execute(pi, MPRemoteExecutable(pi) + " rm -r :'" + path + "'\n", WriteToWorksheet,
            std::move(done));
}

void Delete(PluginInterface* pi, const std::vector<std::string>& paths,
            unique_function<void()>&& done)
{
    const auto state = std::make_shared<DeleteState>(DeleteState{{}, paths, std::move(done)});
    state->next = [weak = std::weak_ptr(state), rebind = pi->MakeRebinder(0)] {
        rebind([state = weak.lock()](PluginInterface* p) { DeleteLast(p, state); });
    };
    state->next();
}

void CopyToDevice(PluginInterface* pi, const std::vector<std::string>& files,
                  const std::string& dir, unique_function<void()>&& done)
{
    if (files.empty()) {
        return;
    }
    const std::string option = BEntry(files[0], true).IsDirectory() ? " -r " : "";
    const std::string line =
        MPRemoteExecutable(pi) + " cp " + option + "'" + files[0] + "' :'" + dir + "'";
    WriteToWorksheet(pi, line);
    Execute(pi, line + "\n", WriteToWorksheet, std::move(done));
}

void GetDeviceName(PluginInterface* pi, const LineCallback& onDevice,
                   unique_function<void()>&& done)
{
    const auto boardsOnly = [onDevice](const std::string_view& line) {
        if (IsBoard(line)) {
            onDevice(line);
        }
    };
    Execute(pi, MPRemoteExecutable(pi) + " devs \n", LineByLine(boardsOnly), std::move(done));
}

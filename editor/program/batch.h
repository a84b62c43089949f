#pragma once

#include "board_tool.h"
#include "options.h"
#include "plugin_host.h"
#include "runtime.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

// Performs commands of the plug-in and of the host one after another, each when the command line
// that the previous one started has finished. A wait continues after its time instead. [ui]
class Batch {
  public:
    // The referenced objects must outlive this one. `onFinished` is called with the exit status: 0,
    // or 1 if a command could not be performed.
    Batch(PluginHost& host, Runtime& runtime, const PluginModule& plugin, BoardTool& tool,
          std::vector<BatchCommand> commands, std::function<void(int)> onFinished);

    // Returns at once; the event loop performs the commands.
    void Start() { ContinueWhenIdle(); }

    // Stops the running command, skips the others and finishes with this status.
    void Interrupt(int status);

  private:
    void ContinueWhenIdle();
    void RunNext();
    void Perform(const PluginCommand* command);
    void Perform(const ShowHelp& command);
    void Perform(const Restart& command);
    void Perform(const RunMain& command);
    void Perform(const Prompt& command);
    void Perform(const Wait&) {}
    void Fail(std::string_view message);

    PluginHost& host_;
    Runtime& runtime_;
    const PluginModule& plugin_;
    BoardTool& tool_;
    std::vector<BatchCommand> commands_;
    std::function<void(int)> onFinished_;
    std::size_t next_ = 0;
    int status_ = 0;
    bool waitingForIdle_ = false;
    QObject timerContext_;  // Cancels a wait when this object is destroyed.
};

#pragma once

#include "options.h"
#include "plugin_host.h"
#include "runtime.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <vector>

// Sends commands to the plug-in one after another, each when the tool's line of the one before has
// ended; a wait goes on after its time instead. Used on the user-interface thread.
class Batch {
  public:
    // What it refers to must outlive it. `onEnd` is called with the exit status: 0, or 1 when a
    // command could not be performed.
    Batch(PluginHost& host, Runtime& runtime, const PluginModule& plugin,
          std::vector<BatchCommand> commands, std::function<void(int)> onEnd);

    // Returns at once; the commands follow.
    void Start() { GoOnWhenIdle(); }

    // Stops what runs and ends with this status.
    void Interrupt(int status);

  private:
    void GoOnWhenIdle();
    void Next();
    void Perform(const PluginCommand& command);
    void Fail(const char* message);

    PluginHost& host_;
    Runtime& runtime_;
    const PluginModule& plugin_;
    std::vector<BatchCommand> commands_;
    std::function<void(int)> onEnd_;
    std::size_t next_ = 0;
    int status_ = 0;
    bool awaitsIdle_ = false;
    QObject timerContext_;  // Ends a wait with this object.
};

#pragma once

#include "editor_host.h"
#include "options.h"
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
    Batch(EditorHost& host, Runtime& runtime, const PluginModule& plugin,
          std::vector<BatchCommand> commands, std::function<void(int)> onEnd);

    // Returns at once; the commands follow.
    void Start() { GoOnWhenIdle(); }

    // Stops what runs and ends with this status.
    void Interrupt(int status);

  private:
    void GoOnWhenIdle();
    void Next();
    void Perform(BatchAction action);
    void PerformFromMenu(const char* label);
    void Fail(const char* message);
    void PerformNamed(const char* command, bool needsRunnable);

    EditorHost& host_;
    Runtime& runtime_;
    const PluginModule& plugin_;
    std::vector<BatchCommand> commands_;
    std::function<void(int)> onEnd_;
    std::size_t next_ = 0;
    int status_ = 0;
    bool awaitsIdle_ = false;
    QObject timerContext_;  // Ends a wait with this object.
};

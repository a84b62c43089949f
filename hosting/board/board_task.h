#pragma once

#include "board_tool.h"

#include <QObject>

#include <functional>
#include <string>
#include <vector>

struct BoardResult {
    bool isStopped = false;  // Another command ended it, or it never started.
    int status = 0;          // The exit status; see ShellJob::SetFinishedHandler.
    std::string output;

    bool IsSuccess() const { return !isStopped && status == 0; }
};

// Runs a command line of the tool and reports its end in every case: unlike BoardTool::Run, also
// when it was stopped. `done` is called by the event loop, while `context` exists. Output beyond a
// few megabytes is dropped. [ui]
void RunBoardTask(BoardTool& tool, const std::vector<std::string>& words, QObject& context,
                  std::function<void(const BoardResult& result)> done);

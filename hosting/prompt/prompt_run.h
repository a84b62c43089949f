#pragma once

#include "board_tool.h"

#include <string>

// Runs a text at the board's prompt. The output goes to the worksheet. Text that is too long for a
// command line is written to a temporary file, which is removed when the command has ended. Returns
// false if the text contains a NUL character or nothing to run, or if that file cannot be written.
// [ui]
bool RunAtPrompt(BoardTool& tool, const std::string& text, BoardTool::OnDone done = {});

#pragma once

#include "PluginInterface.h"
#include "unique_function.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Operations on the board's files, for the Device window. Each starts a command line and returns at
// once. Its completion is called when the command has finished, whatever its result, and is dropped
// when another command is started before that. [ui] Paths are put between single quotes without
// escaping, so a path that contains single quotes is read as a different one: with an odd number of
// quotes the line is an error, with an even number the tool acts on another path ('x' means x, and
// '' the root).

// A line of output, without its ending; valid during the call.
using LineCallback = std::function<void(const std::string_view&)>;

// Lists a directory of the board. `onLine` gets every line that the tool prints.
void DirectoryListing(PluginInterface* pi, const std::string& path, const LineCallback& onLine,
                      unique_function<void()>&& done);

// Deletes a file, or a directory with its contents. The tool's output goes to the worksheet.
// `done` must not be empty.
void DeleteOne(PluginInterface* pi, const std::string& path, std::function<void()> done);

// Deletes one path after another, the last one first. A failed deletion does not end the chain, but
// any other command that is started does.
void Delete(PluginInterface* pi, const std::vector<std::string>& paths,
            unique_function<void()>&& done);

// Copies the first of the local files, or the folder with its contents, into a directory of the
// board. The command and its output are shown in the worksheet. Without a file it does nothing and
// does not call `done`.
void CopyToDevice(PluginInterface* pi, const std::vector<std::string>& files,
                  const std::string& dir, unique_function<void()>&& done);

// Queries the attached boards. `onDevice` is called with a line for each board, not for other
// ports.
void GetDeviceName(PluginInterface* pi, const LineCallback& onDevice,
                   unique_function<void()>&& done);

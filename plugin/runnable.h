#pragma once

#include "PluginInterface.h"

// Which file the commands act on: the front document when it is Python source, else the host's
// current target.

bool IsPythonSource(PluginInterface* pi);

// Whether there is a file, and it is Python source.
bool IsDocumentOrTargetRunnable(PluginInterface* pi);

// The file; an empty reference when there is none. A target's language is not looked at.
EntryRef RunnableDocumentOrTargeRef(PluginInterface* pi);

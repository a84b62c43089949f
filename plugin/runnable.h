#pragma once

#include "PluginInterface.h"

// Which file the commands act on: the front document if it is Python source, otherwise the host's
// current target. [ui]

bool IsPythonSource(PluginInterface* pi);

// Whether there is such a file and it is Python source.
bool IsDocumentOrTargetRunnable(PluginInterface* pi);

// The file; an empty reference when there is none. The language of a target is not checked.
EntryRef RunnableDocumentOrTargeRef(PluginInterface* pi);

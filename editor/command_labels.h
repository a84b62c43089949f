#pragma once

#include "editor_host.h"

#include <QString>

// How a menu shows a command of the plug-in: the name without what all of them begin with, as
// words.
QString CommandLabel(const RegisteredCommand& command);

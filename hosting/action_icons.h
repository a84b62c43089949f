#pragma once

#include <QIcon>

// The icons of a host's actions, in the colours of the palette at the time they are painted.
enum class Action { New, Open, Save, Run, Board, Close };

QIcon ActionIcon(Action action);

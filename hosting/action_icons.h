#pragma once

#include <QIcon>

// Icons for actions. They use the colours of the palette at the time they are painted. [ui]
enum class Action { New, Open, Save, Run, Stop, Board, Close };

QIcon ActionIcon(Action action);

#pragma once

// QScintilla's headers use Qt's keywords, which QT_NO_KEYWORDS disables everywhere else.
#define signals Q_SIGNALS
#define slots Q_SLOTS
#include <Qsci/qscicommandset.h>
#include <Qsci/qscilexerpython.h>
#include <Qsci/qsciscintilla.h>
#include <Qsci/qscistyle.h>
#undef signals
#undef slots

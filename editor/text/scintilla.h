#pragma once

// QScintilla's headers need the keywords that are switched off everywhere else.
#define signals Q_SIGNALS
#define slots Q_SLOTS
#include <Qsci/qscicommandset.h>
#include <Qsci/qscilexerpython.h>
#include <Qsci/qsciscintilla.h>
#undef signals
#undef slots

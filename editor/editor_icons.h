#pragma once

#include <QIcon>

// The icons of the tool bar: "new", "open", "save", "run" and "board", drawn in the colours
// that the application has at the time.
QIcon EditorIcon(const QString& name);

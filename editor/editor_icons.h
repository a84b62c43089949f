#pragma once

#include <QIcon>

// The icons of the editor's window: "new", "open", "save", "run", "board" and "close", drawn in the
// colours that the application has when they are painted.
QIcon EditorIcon(const QString& name);

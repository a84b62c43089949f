#pragma once

#include <QIcon>
#include <QPalette>

// The icons of the tool bar: "new", "open", "save", "run" and "board", drawn in the palette's
// colours.
QIcon EditorIcon(const QString& name, const QPalette& palette);

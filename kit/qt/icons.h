#pragma once

#include <QIcon>

// Icons of the desktop's theme. [ui]

// The icon with this name from the theme, or the picture (see picture_icon.h) if the theme has
// none.
QIcon ThemedIcon(const char* name, const char* picture);

// The icon for a file with this name, chosen by its extension.
QIcon IconForFileName(const QString& name);

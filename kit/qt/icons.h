#pragma once

#include <QIcon>

// Icons. [ui]

// The pictures that the framework draws itself. They need no icon theme and are sharp at every
// scale.
enum class Picture { Document, Folder, Disk, Python, Text, Markup, Image, Data, Binary };

QIcon PaintedIcon(Picture picture);

// The icon with this name from the desktop's icon theme, or the picture if the theme has none.
QIcon ThemedIcon(const char* name, Picture picture);

// The icon for a file with this name, chosen by its extension.
QIcon IconForFileName(const QString& name);

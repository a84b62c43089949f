#pragma once

#include <QIcon>

// The pictures that the framework draws itself, so that they are there without an icon theme and
// sharp at every scale.
enum class Picture { Document, Folder, Disk, Python, Text, Markup, Image, Data, Binary };

QIcon PaintedIcon(Picture picture);

// The desktop's icon of this name; where its theme has none, the picture.
QIcon ThemedIcon(const char* name, Picture picture);

// The icon for a file of this name.
QIcon IconForFileName(const QString& name);

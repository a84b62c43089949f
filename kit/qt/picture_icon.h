#pragma once

#include <QIcon>

// The icon that shows the picture pictures/NAME.svg, which is a resource of the framework. It is
// sharp at every size and scale, needs no icon theme, and follows the current palette: it has the
// palette's text colour where the file has #000000, and its background colour where the file has
// #ffffff. The name must be that of a picture. [ui]
QIcon PictureIcon(const QString& name);

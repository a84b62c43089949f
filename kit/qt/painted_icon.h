#pragma once

#include <QIcon>

class QPainter;

// The colours of the current palette for icons that follow it.
struct IconColors {
    QColor line;
    QColor fill;
};

// Draws a picture on a square of 16 by 16 units.
using IconDrawing = void (*)(QPainter& painter, const IconColors& colors);

// An icon that is drawn each time it is painted, so it is sharp at every size and scale. [ui]
QIcon PaintedIcon(IconDrawing drawing);

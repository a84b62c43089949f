#pragma once

#include "Geometry.h"

#include <QRectF>

inline QRectF ToQt(BRect rect)
{
    return {rect.left, rect.top, rect.Width(), rect.Height()};
}

inline BRect FromQt(const QRectF& rect)
{
    return {rect.left(), rect.top(), rect.right(), rect.bottom()};
}

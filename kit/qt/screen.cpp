#include "Screen.h"

#include "geometry_conversion.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace {

double Distance(const QRectF& area, BPoint point)
{
    const double dx = std::max({area.left() - point.x, 0.0, point.x - area.right()});
    const double dy = std::max({area.top() - point.y, 0.0, point.y - area.bottom()});
    return std::hypot(dx, dy);
}

}  // namespace

BRect BScreen::MaxWindowFrameWithHint(BPoint point)
{
    const auto screens = QGuiApplication::screens();
    const auto nearest = std::ranges::min_element(screens, {}, [point](const QScreen* screen) {
        return Distance(screen->geometry(), point);
    });
    return nearest == screens.end() ? BRect() : FromQt((*nearest)->availableGeometry());
}

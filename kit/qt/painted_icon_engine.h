#pragma once

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

// The base of icons that are painted in any size. Qt's own pixmaps of such an icon would not begin
// transparent. [ui]
class PaintedIconEngine : public QIconEngine {
  public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
};

#include "editor_icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

#include <functional>
#include <map>
#include <utility>

namespace {

// Icons are drawn on a square of 16 units.
using Drawing = void (*)(QPainter& painter, const QColor& line, const QColor& fill);

void DrawSheet(QPainter& painter, const QColor& line, const QColor& fill)
{
    painter.setPen(QPen(line, 1));
    painter.setBrush(fill);
    painter.drawPolygon(
        QPolygonF({{3.5, 1.5}, {9.5, 1.5}, {12.5, 4.5}, {12.5, 14.5}, {3.5, 14.5}}));
    painter.drawPolyline(QPolygonF({{9.5, 1.5}, {9.5, 4.5}, {12.5, 4.5}}));
}

void DrawFolder(QPainter& painter, const QColor& /*line*/, const QColor& /*fill*/)
{
    painter.setPen(QPen(QColor(0x2b, 0x6c, 0xb0), 1));
    painter.setBrush(QColor(0x6a, 0xa9, 0xe9));
    painter.drawPolygon(
        QPolygonF({{1.5, 3.5}, {6.5, 3.5}, {7.5, 5.5}, {14.5, 5.5}, {14.5, 13.5}, {1.5, 13.5}}));
}

void DrawDisk(QPainter& painter, const QColor& line, const QColor& fill)
{
    painter.setPen(QPen(line, 1));
    painter.setBrush(fill);
    painter.drawPolygon(
        QPolygonF({{2.5, 2.5}, {11.5, 2.5}, {13.5, 4.5}, {13.5, 13.5}, {2.5, 13.5}}));
    painter.drawRect(QRectF(5.5, 2.5, 4, 3));
    painter.drawRect(QRectF(4.5, 8.5, 7, 5));
}

void DrawTriangle(QPainter& painter, const QColor& /*line*/, const QColor& /*fill*/)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x2e, 0x9e, 0x4f));
    painter.drawPolygon(QPolygonF({{4, 2}, {14, 8}, {4, 14}}));
}

void DrawBoard(QPainter& painter, const QColor& line, const QColor& fill)
{
    painter.setPen(QPen(line, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(4.5, 3.5, 7, 9), 1, 1);
    for (const double y : {5.5, 8.0, 10.5}) {
        painter.drawLine(QPointF(2, y), QPointF(4, y));
        painter.drawLine(QPointF(12, y), QPointF(14, y));
    }
}

const std::map<QString, Drawing>& Drawings()
{
    static const std::map<QString, Drawing> drawings{{"new", DrawSheet},
                                                     {"open", DrawFolder},
                                                     {"save", DrawDisk},
                                                     {"run", DrawTriangle},
                                                     {"board", DrawBoard}};
    return drawings;
}

// Draws at whatever size and scale is asked for.
class DrawnIcon final : public QIconEngine {
  public:
    explicit DrawnIcon(Drawing drawing) : drawing_(drawing) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QPalette palette = QGuiApplication::palette();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 16.0, rect.height() / 16.0);
        drawing_(*painter, palette.color(group, QPalette::WindowText),
                 palette.color(QPalette::Base));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new DrawnIcon(*this); }

  private:
    Drawing drawing_;
};

}  // namespace

QIcon EditorIcon(const QString& name)
{
    return QIcon(new DrawnIcon(Drawings().at(name)));
}

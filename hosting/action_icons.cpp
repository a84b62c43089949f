#include "action_icons.h"

#include "icons.h"
#include "painted_icon.h"

#include <QPainter>

namespace {

void DrawDisk(QPainter& painter, const IconColors& colors)
{
    painter.setPen(QPen(colors.line, 1));
    painter.setBrush(colors.fill);
    painter.drawPolygon(
        QPolygonF({{2.5, 2.5}, {11.5, 2.5}, {13.5, 4.5}, {13.5, 13.5}, {2.5, 13.5}}));
    painter.drawRect(QRectF(5.5, 2.5, 4, 3));
    painter.drawRect(QRectF(4.5, 8.5, 7, 5));
}

void DrawTriangle(QPainter& painter, const IconColors& /*colors*/)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x2e, 0x9e, 0x4f));
    painter.drawPolygon(QPolygonF({{4, 2}, {14, 8}, {4, 14}}));
}

void DrawSquare(QPainter& painter, const IconColors& /*colors*/)
{
    painter.fillRect(QRectF(3, 3, 10, 10), QColor(0xc8, 0x3c, 0x3c));
}

void DrawBoard(QPainter& painter, const IconColors& colors)
{
    painter.setPen(QPen(colors.line, 1));
    painter.setBrush(colors.fill);
    painter.drawRoundedRect(QRectF(4.5, 3.5, 7, 9), 1, 1);
    for (const double y : {5.5, 8.0, 10.5}) {
        painter.drawLine(QPointF(2, y), QPointF(4, y));
        painter.drawLine(QPointF(12, y), QPointF(14, y));
    }
}

void DrawCross(QPainter& painter, const IconColors& colors)
{
    painter.setPen(QPen(colors.line, 1.5));
    painter.drawLine(QPointF(4.5, 4.5), QPointF(11.5, 11.5));
    painter.drawLine(QPointF(11.5, 4.5), QPointF(4.5, 11.5));
}

}  // namespace

QIcon ActionIcon(Action action)
{
    switch (action) {
        case Action::New: return PaintedIcon(Picture::Document);
        case Action::Open: return PaintedIcon(Picture::Folder);
        case Action::Save: return PaintedIcon(DrawDisk);
        case Action::Run: return PaintedIcon(DrawTriangle);
        case Action::Stop: return PaintedIcon(DrawSquare);
        case Action::Board: return PaintedIcon(DrawBoard);
        case Action::Close: return PaintedIcon(DrawCross);
    }
    return {};
}

#include "painted_icon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

namespace {

constexpr double kSide = 16;
constexpr double kDisabledOpacity = 0.4;

class DrawingEngine final : public QIconEngine {
  public:
    explicit DrawingEngine(IconDrawing drawing) : drawing_(drawing) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette palette = QGuiApplication::palette();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setOpacity(mode == QIcon::Disabled ? kDisabledOpacity : 1.0);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / kSide, rect.height() / kSide);
        drawing_(*painter, {palette.color(QPalette::WindowText), palette.color(QPalette::Base)});
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

    QIconEngine* clone() const override { return new DrawingEngine(drawing_); }

  private:
    IconDrawing drawing_;
};

}  // namespace

QIcon PaintedIcon(IconDrawing drawing)
{
    return QIcon(new DrawingEngine(drawing));
}

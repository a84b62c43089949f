#include "picture_icon.h"

#include "painted_icon_engine.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <tuple>

namespace {

constexpr double kDisabledOpacity = 0.4;

QByteArray InColorsOf(const QPalette& palette, QByteArray picture)
{
    const auto color = [&](QPalette::ColorRole role) {
        return palette.color(role).name().toUtf8();
    };
    // The second colour may be #000000.
    picture.replace("#ffffff", "background").replace("#000000", color(QPalette::WindowText));
    return picture.replace("background", color(QPalette::Base));
}

class PictureEngine final : public PaintedIconEngine {
  public:
    explicit PictureEngine(const QByteArray& picture) : picture_(picture) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const QByteArray colored = InColorsOf(QGuiApplication::palette(), picture_);
        if (colored != loaded_) {
            loaded_ = colored;
            renderer_.load(loaded_);
        }
        painter->save();
        painter->setOpacity(mode == QIcon::Disabled ? kDisabledOpacity : 1.0);
        renderer_.render(painter, QRectF(rect));
        painter->restore();
    }

    QIconEngine* clone() const override { return new PictureEngine(picture_); }

  private:
    QByteArray picture_;
    QByteArray loaded_;
    QSvgRenderer renderer_;
};

}  // namespace

QIcon PictureIcon(const QString& name)
{
    static QHash<QString, QIcon> cache;  // Each drawn row of a table needs an icon.
    auto found = cache.find(name);
    if (found == cache.end()) {
        QFile file(":/quilp/pictures/" + name + ".svg");
        std::ignore = file.open(QIODevice::ReadOnly);
        found = cache.insert(name, QIcon(new PictureEngine(file.readAll())));
    }
    return *found;
}

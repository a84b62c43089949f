#include "board_drawing.h"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr QRectF kBody(12, 12, 300, 126);
constexpr QRectF kChip(136, 49, 52, 52);
constexpr double kPadPitch = 14;
constexpr double kFirstPad = 29;
constexpr double kPadInset = 5;  // From the edge of the board.

const QColor kSilver(0xc9, 0xce, 0xd5);
const QColor kSilk(0xe8, 0xee, 0xf6);
const QColor kLedColor(0x5c, 0xff, 0x9a);

// From left to right, with the connector on the left; -1 is power or ground.
constexpr std::array<int, 20> kTopPins{-1, -1, -1, -1, -1, -1, 28, -1, 27, 26,
                                       -1, 22, -1, 21, 20, 19, 18, -1, 17, 16};
constexpr std::array<int, 20> kBottomPins{0, 1, -1, 2,  3,  4,  5,  -1, 6,  7,
                                          8, 9, -1, 10, 11, 12, 13, -1, 14, 15};

void AddPads(std::vector<Pad>& pads, const std::array<int, 20>& pins, bool isTop)
{
    const double y = isTop ? kBody.top() + kPadInset : kBody.bottom() - kPadInset;
    double x = kFirstPad;
    for (const int pin : pins) {
        pads.push_back({pin >= 0 ? QString::number(pin) : QString(), {x, y}, isTop});
        x += kPadPitch;
    }
}

QFont TextFont(const QPainter& painter, double size, bool isBold)
{
    QFont font = painter.font();
    font.setPixelSize(std::max(1, qRound(size)));
    font.setBold(isBold);
    return font;
}

// Text is drawn enlarged, because sizes of fonts in pixels are whole numbers.
void DrawText(QPainter& painter, QPointF center, const QString& text, double size,
              const QColor& color, bool isBold = false)
{
    constexpr double kFactor = 8;
    painter.save();
    painter.translate(center);
    painter.scale(1 / kFactor, 1 / kFactor);
    painter.setFont(TextFont(painter, size * kFactor, isBold));
    painter.setPen(color);
    painter.drawText(QRectF(-800, -200, 1600, 400), Qt::AlignCenter, text);
    painter.restore();
}

QPointF NumberCenter(const Pad& pad)
{
    return pad.center + QPointF(0, pad.isTop ? 12 : -12);
}

// From the pads near the chip, vertical and then slanting to its edge.
void DrawTraces(QPainter& painter)
{
    painter.setPen(QPen(QColor(0x3b, 0x6c, 0xa5), 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const double middle = kChip.center().x();
    for (const auto& pad : BoardPads()) {
        const double aside = pad.center.x() - middle;
        if (pad.pin.isEmpty() || std::abs(aside) > 75) {
            continue;
        }
        const double sign = pad.isTop ? 1 : -1;
        const double edge = pad.isTop ? kChip.top() : kChip.bottom();
        const double end = middle + aside * 0.28;
        const double slant = std::abs(pad.center.x() - end) * 0.36;
        QPainterPath path(pad.center);
        path.lineTo(pad.center.x(), edge - sign * (3 + slant));
        path.lineTo(end, edge - sign * 3);
        path.lineTo(end, edge);
        painter.drawPath(path);
    }
}

void DrawContacts(QPainter& painter)
{
    for (const auto& pad : BoardPads()) {
        const bool hasPin = !pad.pin.isEmpty();
        const double outer = pad.isTop ? kBody.top() : kBody.bottom() - 10;
        painter.setPen(Qt::NoPen);
        painter.setBrush(hasPin ? kGold : kGold.darker(125));
        painter.drawRoundedRect(QRectF(pad.center.x() - 4.2, outer, 8.4, 10), 2.4, 2.4);
        painter.setBrush(QColor(0x16, 0x2b, 0x47));
        painter.drawEllipse(pad.center, 2, 2);
        QColor color = kSilk;
        color.setAlpha(135);
        DrawText(painter, NumberCenter(pad), pad.pin, 7.5, color);
    }
}

void DrawConnector(QPainter& painter)
{
    constexpr QRectF kShell(3, 54, 34, 42);
    QLinearGradient metal(kShell.topLeft(), kShell.bottomLeft());
    metal.setColorAt(0, kSilver.darker(125));
    metal.setColorAt(0.25, kSilver.lighter(112));
    metal.setColorAt(0.75, kSilver);
    metal.setColorAt(1, kSilver.darker(135));
    painter.setPen(QPen(kSilver.darker(160), 0.8));
    painter.setBrush(metal);
    painter.drawRoundedRect(kShell, 5, 5);
    painter.setPen(QPen(kSilver.darker(130), 0.8));
    painter.drawLine(QPointF(9, 58), QPointF(9, 92));
}

void DrawChip(QPainter& painter)
{
    painter.setPen(QPen(kSilver.darker(115), 1.6));
    const int legs = static_cast<int>((kChip.width() - 6) / 5);
    for (int leg = 0; leg < legs; ++leg) {
        const double offset = 6 + 5.0 * leg;
        const double x = kChip.left() + offset;
        const double y = kChip.top() + offset;
        painter.drawLine(QPointF(x, kChip.top() - 2.5), QPointF(x, kChip.bottom() + 2.5));
        painter.drawLine(QPointF(kChip.left() - 2.5, y), QPointF(kChip.right() + 2.5, y));
    }
    QLinearGradient plastic(kChip.topLeft(), kChip.bottomRight());
    plastic.setColorAt(0, QColor(0x3a, 0x40, 0x49));
    plastic.setColorAt(1, QColor(0x1b, 0x1e, 0x23));
    painter.setPen(Qt::NoPen);
    painter.setBrush(plastic);
    painter.drawRoundedRect(kChip, 3, 3);
    painter.setBrush(QColor(255, 255, 255, 70));
    painter.drawEllipse(kChip.topLeft() + QPointF(7, 7), 2.2, 2.2);
    const QColor print(0xc8, 0xd0, 0xda);
    DrawText(painter, kChip.center() - QPointF(0, 4), QStringLiteral("virtual"), 9, print);
    DrawText(painter, kChip.center() + QPointF(0, 7), QStringLiteral("board"), 9, print);
}

void DrawSmallParts(QPainter& painter)
{
    painter.setPen(Qt::NoPen);
    for (const QRectF& part :
         {QRectF(104, 60, 5, 10), QRectF(113, 60, 5, 10), QRectF(204, 84, 10, 5),
          QRectF(204, 92, 10, 5), QRectF(48, 44, 10, 5), QRectF(48, 102, 10, 5)}) {
        painter.setBrush(kSilver);
        painter.drawRect(part);
        painter.setBrush(QColor(0x8a, 0x6a, 0x48));
        const bool isWide = part.width() > part.height();
        painter.drawRect(isWide ? part.adjusted(2.5, 0, -2.5, 0) : part.adjusted(0, 2.5, 0, -2.5));
    }
    painter.setBrush(kSilver);
    painter.drawRoundedRect(QRectF(202, 55, 24, 12), 5, 5);
    painter.setBrush(kSilver.lighter(112));
    painter.drawRoundedRect(QRectF(204, 56.5, 20, 8), 3.5, 3.5);
}

}  // namespace

const std::vector<Pad>& BoardPads()
{
    static const std::vector<Pad> pads = [] {
        std::vector<Pad> all;
        AddPads(all, kTopPins, true);
        AddPads(all, kBottomPins, false);
        return all;
    }();
    return pads;
}

void DrawBoard(QPainter& painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawRoundedRect(kBody.translated(0, 2.5).adjusted(-1, 0, 1, 1), 9, 9);
    QLinearGradient surface(kBody.topLeft(), kBody.bottomLeft());
    surface.setColorAt(0, QColor(0x2a, 0x57, 0x8c));
    surface.setColorAt(1, QColor(0x1d, 0x3d, 0x68));
    painter.setBrush(surface);
    painter.drawRoundedRect(kBody, 8, 8);
    DrawTraces(painter);
    DrawContacts(painter);
    DrawConnector(painter);
    DrawSmallParts(painter);
    DrawChip(painter);
    DrawText(painter, kLedCenter + QPointF(0, 17), QStringLiteral("LED"), 8, kSilk);
    DrawLed(painter, 0);
}

void DrawCached(QPainter& painter, const QRectF& rect, const QString& key,
                const std::function<void(QPainter& painter)>& draw)
{
    const QTransform transform = painter.worldTransform();
    const QRect place = transform.mapRect(rect).toAlignedRect();
    const double ratio = painter.device()->devicePixelRatioF();
    // The place counts, too, because it need not be a whole number of pixels.
    const QString fullKey = QString("quilp-%1-%2-%3-%4-%5-%6")
                                .arg(key)
                                .arg(place.x())
                                .arg(place.y())
                                .arg(place.width())
                                .arg(place.height())
                                .arg(ratio);
    QPixmap pixmap;
    if (!QPixmapCache::find(fullKey, &pixmap)) {
        pixmap = QPixmap(place.size() * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter inner(&pixmap);
        inner.setRenderHint(QPainter::Antialiasing);
        inner.setFont(painter.font());
        inner.translate(-place.topLeft());
        inner.setWorldTransform(transform, true);
        draw(inner);
        QPixmapCache::insert(fullKey, pixmap);
    }
    painter.save();
    painter.resetTransform();
    painter.drawPixmap(place.topLeft(), pixmap);
    painter.restore();
}

void DrawGlow(QPainter& painter, QPointF center, double radius, const QColor& color, double level)
{
    QColor inner = color;
    inner.setAlphaF(static_cast<float>(0.75 * level));
    QColor outer = color;
    outer.setAlpha(0);
    QRadialGradient glow(center, radius);
    glow.setColorAt(0.25, inner);
    glow.setColorAt(1, outer);
    painter.setPen(Qt::NoPen);
    painter.setBrush(glow);
    painter.drawEllipse(center, radius, radius);
}

QRectF LightRect()
{
    return {kLedCenter - QPointF(26, 26), QSizeF(52, 52)};
}

void DrawLed(QPainter& painter, double brightness)
{
    if (brightness > 0) {
        DrawGlow(painter, kLedCenter, 26, kLedColor, brightness);
    }
    const QRectF lens(kLedCenter - QPointF(8, 5.5), QSizeF(16, 11));
    painter.setPen(QPen(QColor(0xf2, 0xf5, 0xf8), 1.6));
    const auto mix = [&](int off, int on) { return off + qRound((on - off) * brightness); };
    painter.setBrush(QColor(mix(0x6f, 0xd8), mix(0x86, 0xff), mix(0x7c, 0xe6)));
    painter.drawRoundedRect(lens, 3, 3);
}

QRectF ButtonLabelRect()
{
    return {kButtonRect.bottomLeft() + QPointF(0, 1), QSizeF(kButtonRect.width(), 12)};
}

void DrawButtonLabel(QPainter& painter, const QString& pin)
{
    DrawText(painter, ButtonLabelRect().center(), pin, 8, kSilk);
}

QRectF PadRect(const Pad& pad)
{
    return {pad.center - QPointF(8, pad.isTop ? 8 : 20), QSizeF(16, 28)};
}

void DrawPad(QPainter& painter, const Pad& pad, double level, const QColor& color)
{
    if (level > 0) {
        DrawGlow(painter, pad.center, 8, color, level);
    }
    QColor core = color;
    core.setAlphaF(static_cast<float>(level));
    painter.setPen(QPen(Qt::white, 1.2));
    painter.setBrush(core);
    painter.drawEllipse(pad.center, 2.8, 2.8);
    DrawText(painter, NumberCenter(pad), pad.pin, 9, Qt::white, true);
}

#include "pixel_strip.h"

#include "board_drawing.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr int kMinCell = 16;
constexpr int kMaxCell = 30;
constexpr int kPadding = 6;

// The number of columns for `count` pixels where at most `max` fit: pixels in a square or in full
// rows if possible.
int Columns(int count, int max)
{
    if (count <= max) {
        return std::max(1, count);
    }
    const int root = static_cast<int>(std::lround(std::sqrt(count)));
    if (root * root == count && root <= max) {
        return root;
    }
    for (int columns = max; columns * 2 > max; --columns) {
        if (count % columns == 0) {
            return columns;
        }
    }
    return max;
}

// What an eye sees: light of low values, too.
double Visible(const QColor& color)
{
    const int strongest = std::max({color.red(), color.green(), color.blue()});
    return strongest == 0 ? 0 : 0.25 + 0.75 * std::sqrt(strongest / 255.0);
}

void DrawPixel(QPainter& painter, const QRectF& cell, const QColor& color)
{
    const QRectF body = QRectF(0, 0, cell.width() * 0.66, cell.width() * 0.66);
    const QRectF place = body.translated(cell.center() - body.center());
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xe9, 0xec, 0xef));
    painter.drawRoundedRect(place, 2, 2);
    const double level = Visible(color);
    const int hue = color.hsvHue();
    const QColor light = QColor::fromHsv(hue, hue < 0 ? 0 : color.hsvSaturation(), 255);
    if (level > 0) {
        DrawGlow(painter, cell.center(), cell.width() * 0.62, light, level);
    }
    const double radius = body.width() * 0.38;
    const QColor dark(0xb9, 0xc0, 0xc7);
    const auto mix = [&](int off, int on) { return off + qRound((on - off) * level); };
    painter.setPen(QPen(QColor(0, 0, 0, 45), 0.8));
    painter.setBrush(QColor(mix(dark.red(), light.red()), mix(dark.green(), light.green()),
                            mix(dark.blue(), light.blue())));
    painter.drawEllipse(cell.center(), radius, radius);
}

}  // namespace

PixelStrip::PixelStrip(const QString& pin, QWidget* parent) : Card(pin, parent)
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void PixelStrip::Show(const std::vector<QColor>& pixels)
{
    SetUsed(true);
    const auto before = std::exchange(pixels_, pixels);
    if (before.size() != pixels.size()) {
        setAccessibleName(tr("%1 NeoPixels at pin %2").arg(pixels.size()).arg(pin()));
        updateGeometry();
        return update();
    }
    const Grid grid = GridFor(width());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (pixels[i] != before[i]) {
            update(CellRect(grid, static_cast<int>(i)));
        }
    }
}

PixelStrip::Grid PixelStrip::GridFor(int width) const
{
    const int space = std::max(kMinCell, width - 2 * (kMargin + kPadding));
    const int count = static_cast<int>(std::ssize(pixels_));
    const int columns = Columns(count, space / kMinCell);
    return {columns, (count + columns - 1) / columns, std::min(space / columns, kMaxCell)};
}

QRect PixelStrip::CellRect(const Grid& grid, int index) const
{
    const int left = (width() - grid.columns * grid.cell) / 2;
    return {left + index % grid.columns * grid.cell,
            kLine + kPadding + index / grid.columns * grid.cell, grid.cell, grid.cell};
}

QSize PixelStrip::sizeHint() const
{
    return {250, heightForWidth(250)};
}

int PixelStrip::heightForWidth(int width) const
{
    const Grid grid = GridFor(width);
    return kLine + grid.rows * grid.cell + 2 * kPadding + kMargin;
}

void PixelStrip::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    DrawBackground(painter);
    DrawTitle(painter, tr("NeoPixels"), {});
    painter.drawText(ContentRect(), Qt::AlignVCenter | Qt::AlignRight,
                     QString::number(pixels_.size()));
    const Grid grid = GridFor(width());
    const QRect all(CellRect(grid, 0).topLeft(),
                    QSize(grid.columns * grid.cell, grid.rows * grid.cell));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x15, 0x18, 0x1c));
    painter.drawRoundedRect(all.adjusted(-kPadding, -kPadding, kPadding, kPadding), 6, 6);
    for (int i = 0; isUsed() && i < static_cast<int>(std::ssize(pixels_)); ++i) {
        const QRect cell = CellRect(grid, i);
        if (event->rect().intersects(cell)) {
            DrawPixel(painter, cell, pixels_[static_cast<std::size_t>(i)]);
        }
    }
}

#include "card.h"

#include "board_drawing.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr QSize kBadge(36, 24);
constexpr int kTitleWidth = 74;
constexpr double kUnusedOpacity = 0.4;
constexpr int kSpace = 8;
constexpr int kBorder = 2;  // At least the width of what surrounds the card.
const QColor kBadgeText(0x2b, 0x22, 0x0c);

QFont Scaled(QFont font, double factor, bool isBold)
{
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(std::max(1, qRound(font.pixelSize() * factor)));
    }
    font.setBold(isBold);
    return font;
}

}  // namespace

Card::Card(QString pin, QWidget* parent) : QWidget(parent), pin_(std::move(pin)) {}

void Card::SetUsed(bool isUsed)
{
    if (std::exchange(isUsed_, isUsed) != isUsed) {
        update();
    }
}

QRect Card::TitleRect() const
{
    return {kMargin + kBadge.width() + kSpace, 0, kTitleWidth, kLine};
}

QRect Card::ContentRect() const
{
    const int left = TitleRect().right() + 1 + kSpace;
    return {left, kBorder, std::max(0, width() - kMargin - left), kLine - 2 * kBorder};
}

void Card::DrawBackground(QPainter& painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 7, 7);
    painter.setOpacity(isUsed_ ? 1 : kUnusedOpacity);
    const QRect badge(QPoint(kMargin, (kLine - kBadge.height()) / 2), kBadge);
    painter.setPen(kGold.darker(118));
    painter.setBrush(kGold);
    painter.drawRoundedRect(QRectF(badge).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    painter.setPen(kBadgeText);
    painter.setFont(Scaled(font(), 0.95, true));
    painter.drawText(badge, Qt::AlignCenter,
                     painter.fontMetrics().elidedText(pin_, Qt::ElideRight, kBadge.width() - 4));
}

void Card::DrawTitle(QPainter& painter, const QString& title, const QString& note) const
{
    QRect place = TitleRect();
    painter.setPen(palette().color(QPalette::WindowText));
    painter.setFont(font());
    if (note.isEmpty()) {
        painter.drawText(place, Qt::AlignVCenter, title);
        return;
    }
    place.adjust(0, 6, 0, -6);
    painter.drawText(place, Qt::AlignTop, title);
    painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
    painter.setFont(Scaled(font(), 0.85, false));
    painter.drawText(place, Qt::AlignBottom, note);
}

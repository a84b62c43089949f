#pragma once

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <functional>
#include <vector>

class QPainter;

// How the virtual board looks. The unit of all places is kBoardSize.width() parts of the picture's
// width. [ui]
inline constexpr QSizeF kBoardSize(320, 150);

inline constexpr QColor kGold(0xe3, 0xb5, 0x4a);  // Contacts are gold-plated.
inline constexpr double kDisabledOpacity = 0.4;   // Of what cannot be used.

// A contact at the edge of the board. Those without a pin are power and ground.
struct Pad {
    QString pin;
    QPointF center;
    bool isTop;  // At the upper edge.
};

const std::vector<Pad>& BoardPads();

// Where the LED and the button are.
inline constexpr QPointF kLedCenter(78, 75);
inline constexpr QRectF kButtonRect(254, 54, 38, 38);

// Everything that does not change.
void DrawBoard(QPainter& painter);
// The light of the LED, from 0 to 1. It covers LightRect.
void DrawLed(QPainter& painter, double brightness);
QRectF LightRect();
// The mark of a pad whose pin is in use; `level` is from 0 to 1. It covers PadRect.
void DrawPad(QPainter& painter, const Pad& pad, double level, const QColor& color);
QRectF PadRect(const Pad& pad);

// The pin of the button, below it. It covers ButtonLabelRect.
QRectF ButtonLabelRect();
void DrawButtonLabel(QPainter& painter, const QString& pin);

// Draws a part that covers `rect` from a cache, because lights may change sixty times a second. The
// key must name everything that the part depends on but its size.
void DrawCached(QPainter& painter, const QRectF& rect, const QString& key,
                const std::function<void(QPainter& painter)>& draw);

// A round light with its glow, whose lens has this radius.
void DrawGlow(QPainter& painter, QPointF center, double radius, const QColor& color, double level);

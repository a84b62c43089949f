#include "input_button.h"

#include "board_drawing.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QRadialGradient>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

// Longer than programs wait for contacts that bounce.
constexpr std::chrono::milliseconds kMinPress{120};

void DrawSwitch(QPainter& painter, bool isPressed, bool isEnabled, const QColor& mark)
{
    QLinearGradient metal(0, 0, 0, 40);
    metal.setColorAt(0, QColor(0xe2, 0xe6, 0xea));
    metal.setColorAt(1, QColor(0xa9, 0xb0, 0xb8));
    painter.setPen(QPen(QColor(0x7b, 0x83, 0x8c), 1));
    painter.setBrush(metal);
    painter.drawRoundedRect(QRectF(2, 2, 36, 36), 5, 5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x8a, 0x92, 0x9b));
    for (const QPointF corner : {QPointF(7, 7), QPointF(33, 7), QPointF(7, 33), QPointF(33, 33)}) {
        painter.drawEllipse(corner, 1.8, 1.8);
    }
    const double radius = isPressed ? 10.5 : 12;
    const QColor cap = isPressed   ? mark
                       : isEnabled ? QColor(0x2d, 0x32, 0x39)
                                   : QColor(0x70, 0x77, 0x80);
    QRadialGradient plastic(QPointF(17, 15), 18);
    plastic.setColorAt(0, cap.lighter(isPressed ? 125 : 165));
    plastic.setColorAt(1, cap);
    painter.setPen(QPen(QColor(0, 0, 0, 90), isPressed ? 2.5 : 1));
    painter.setBrush(plastic);
    painter.drawEllipse(QPointF(20, 20), radius, radius);
}

}  // namespace

InputButton::InputButton(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    releaseTimer_.setSingleShot(true);
    releaseTimer_.setInterval(kMinPress);
    connect(&releaseTimer_, &QTimer::timeout, this, [this] {
        if (!isHeld_ && !isLocked_) {
            Drive(false);
        }
    });
    connect(this, &QAbstractButton::pressed, this, &InputButton::Press);
    connect(this, &QAbstractButton::released, this, &InputButton::Release);
    SetPin({});
}

InputButton::~InputButton()
{
    Drive(false);
}

void InputButton::SetPin(const QString& pin)
{
    Drive(false);
    pin_ = pin;
    setEnabled(!pin.isEmpty());
    setCursor(pin.isEmpty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
    isHeld_ = isLocked_ = false;
    releaseTimer_.stop();
    setToolTip(pin.isEmpty() ? tr("A button for the first input that the program uses")
                             : tr("Press the button at pin %1. With Shift, or by Return, it stays "
                                  "pressed until the next click.")
                                   .arg(pin));
    update();
}

void InputButton::SetOther(InputButton* other)
{
    if (other != nullptr && other == other_) {
        return;
    }
    if (other_ != nullptr) {
        disconnect(other_, nullptr, this, nullptr);
    }
    SetPin(other != nullptr ? other->pin() : QString());
    other_ = other;
    if (other != nullptr) {
        connect(other, &InputButton::Driven, this, [this] { update(); });
    }
}

void InputButton::Drive(bool isPressed)
{
    if (std::exchange(isPressed_, isPressed) == isPressed) {
        return;
    }
    setAccessibleDescription(isPressed ? tr("Pressed") : QString());
    Q_EMIT Driven(pin_, isPressed ? std::optional(level_ == 0) : std::nullopt);
    update();
}

void InputButton::Press()
{
    if (other_ != nullptr) {
        return other_->Press();
    }
    isHeld_ = true;
    isLocked_ = QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier) && !isLocked_;
    releaseTimer_.start();
    Drive(true);
}

void InputButton::Release()
{
    if (other_ != nullptr) {
        return other_->Release();
    }
    isHeld_ = false;
    if (!releaseTimer_.isActive() && !isLocked_) {
        Drive(false);
    }
}

void InputButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        return QAbstractButton::keyPressEvent(event);
    }
    if (!event->isAutoRepeat()) {
        isLocked_ = !isLocked_;
        Drive(isLocked_);
    }
}

void InputButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double size = std::min(width(), height());
    const auto* const row = parentWidget();
    painter.setOpacity(row == nullptr || row->isEnabled() ? 1 : kDisabledOpacity);
    painter.translate((width() - size) / 2, (height() - size) / 2);
    painter.scale(size / 40, size / 40);
    const QColor mark = palette().color(QPalette::Highlight);
    const auto* const source = other_ != nullptr ? other_.data() : this;
    DrawSwitch(painter, source->isPressed_, isEnabled(), mark);
    if (hasFocus()) {
        painter.setPen(QPen(mark, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(1, 1, 38, 38), 6, 6);
    }
}

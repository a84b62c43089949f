#include "pin_row.h"

#include "board_drawing.h"
#include "input_button.h"

#include <QPaintEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QSlider>

#include <array>
#include <chrono>
#include <cmath>
#include <utility>

namespace {

using Mode = PinState::Mode;

// Assistive technology hears of a state when it has lasted this long.
constexpr std::chrono::seconds kRest{1};
constexpr double kVolts = 3.3;  // At the highest value of an ADC.
constexpr int kValueWidth = 52;
constexpr int kButtonSize = 30;

QString TitleOf(Mode mode)
{
    switch (mode) {
        case Mode::In: return PinRow::tr("Input");
        case Mode::Out: return PinRow::tr("Output");
        case Mode::OpenDrain: return PinRow::tr("Open drain");
        case Mode::Pwm: return PinRow::tr("PWM");
        case Mode::Adc: return PinRow::tr("ADC");
    }
    return {};
}

QString FrequencyText(double frequency)
{
    constexpr std::array<const char*, 3> kUnits{"Hz", "kHz", "MHz"};
    std::size_t unit = 0;
    while (frequency >= 1000 && unit + 1 < kUnits.size()) {
        frequency /= 1000;
        ++unit;
    }
    return QString("%1 %2").arg(frequency, 0, 'g', 4).arg(kUnits.at(unit));
}

QString ValueText(const PinState& state)
{
    switch (state.mode) {
        case Mode::Pwm: return QString("%1 %").arg(qRound(state.Brightness() * 100));
        case Mode::Adc:
            return QString("%1 V").arg(kVolts * state.analog / PinState::kMax, 0, 'f', 2);
        default: return QString::number(state.value);
    }
}

}  // namespace

PinRow::PinRow(const QString& pin, QWidget* parent) : Card(pin, parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    restTimer_.setSingleShot(true);
    restTimer_.setInterval(kRest);
    connect(&restTimer_, &QTimer::timeout, this, [this] {
        driven_.reset();
        ShowInControl();
        Describe();
    });
    MakeControl();
    Describe();
}

PinRow::~PinRow()
{
    delete button_;  // Releases the pin, by a signal of this row.
}

void PinRow::Show(const PinState& state)
{
    SetUsed(true);
    const PinState before = std::exchange(state_, state);
    if (state.mode != before.mode) {
        MakeControl();
    }
    ShowInControl();
    const bool isSameKind = state.mode == before.mode && state.frequency == before.frequency;
    isSameKind ? update(ContentRect()) : update();
    if (!restTimer_.isActive()) {
        setAccessibleName(tr("Pin %1, %2").arg(pin(), TitleOf(state.mode)));
    }
    restTimer_.start();
}

// With the state, which would be read aloud too often while it changes.
void PinRow::Describe()
{
    setAccessibleName(tr("Pin %1, %2, %3").arg(pin(), TitleOf(state_.mode), ValueText(state_)));
}

void PinRow::MakeControl()
{
    delete std::exchange(button_, nullptr);
    delete std::exchange(slider_, nullptr);
    driven_.reset();
    if (state_.mode == Mode::In) {
        button_ = new InputButton(this);
        button_->SetPin(pin());
        button_->setAccessibleName(tr("Button at pin %1").arg(pin()));
        connect(button_, &InputButton::Driven, this, &PinRow::LevelDriven);
        button_->show();
    } else if (state_.mode == Mode::Adc) {
        slider_ = new QSlider(Qt::Horizontal, this);
        slider_->setRange(0, PinState::kMax);
        slider_->setSingleStep(PinState::kMax / 100);
        slider_->setPageStep(PinState::kMax / 10);
        slider_->setAccessibleName(tr("Voltage at pin %1").arg(pin()));
        connect(slider_, &QSlider::valueChanged, this, &PinRow::Drive);
        slider_->show();
    }
    PlaceControl();
}

void PinRow::Drive(int value)
{
    driven_ = value;
    restTimer_.start();
    Q_EMIT AnalogDriven(pin(), value);
}

void PinRow::PlaceControl()
{
    const QRect meter = MeterRect();
    if (button_ != nullptr) {
        button_->setGeometry(meter.right() + 1 - kButtonSize, (kLine - kButtonSize) / 2,
                             kButtonSize, kButtonSize);
    }
    if (slider_ != nullptr) {
        const int height = slider_->sizeHint().height();
        slider_->setGeometry(meter.left(), (kLine - height) / 2, meter.width(), height);
    }
}

void PinRow::ShowInControl()
{
    if (button_ != nullptr) {
        button_->ShowLevel(state_.value);
    }
    if (driven_ == state_.analog) {
        driven_.reset();
    }
    // An older value would take the user's last steps back.
    if (slider_ != nullptr && !slider_->isSliderDown() && !driven_) {
        const QSignalBlocker blocker(slider_);
        slider_->setValue(state_.analog);
        slider_->setToolTip(tr("The program reads %1 of 65535").arg(state_.analog));
    }
}

QRect PinRow::ValueRect() const
{
    QRect place = ContentRect();
    place.setLeft(place.right() + 1 - kValueWidth);
    return place;
}

QRect PinRow::MeterRect() const
{
    return ContentRect().adjusted(0, 0, -kValueWidth, 0);
}

void PinRow::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (ContentRect().contains(event->rect()) && isUsed()) {
        // The most frequent case, which should cost little.
        painter.fillRect(event->rect(), palette().color(QPalette::Base));
        painter.setRenderHint(QPainter::Antialiasing);
    } else {
        DrawBackground(painter);
        DrawTitle(painter, TitleOf(state_.mode),
                  state_.mode == Mode::Pwm ? FrequencyText(state_.frequency) : QString());
    }
    if (!isUsed()) {
        return;
    }
    if (state_.mode == Mode::Pwm) {
        DrawDuty(painter);
    } else if (state_.mode != Mode::Adc) {
        DrawLevel(painter);
    }
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(ValueRect(), Qt::AlignVCenter | Qt::AlignRight, ValueText(state_));
}

void PinRow::DrawLevel(QPainter& painter) const
{
    const bool isHigh = state_.value != 0;
    const QColor color = palette().color(QPalette::Highlight);
    const QColor rim = isHigh ? color : palette().color(QPalette::Mid);
    const QColor core = isHigh ? color.lighter(130) : palette().color(QPalette::Window);
    const QPointF center(ValueRect().right() - 22.5, kLine / 2.0);
    const QRectF place(center - QPointF(13, 13), QSizeF(26, 26));
    DrawCached(painter, place, "level " + rim.name() + core.name(), [&](QPainter& inner) {
        if (isHigh) {
            DrawGlow(inner, center, 13, color, 1);
        }
        inner.setPen(QPen(rim, 1.5));
        inner.setBrush(core);
        inner.drawEllipse(center, 5.5, 5.5);
    });
}

void PinRow::DrawDuty(QPainter& painter) const
{
    constexpr double kHeight = 8;
    const QRectF bar(MeterRect().left(), (kLine - kHeight) / 2, MeterRect().width(), kHeight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Mid));
    painter.drawRoundedRect(bar, kHeight / 2, kHeight / 2);
    painter.setClipRect(QRectF(bar.topLeft(), QSizeF(bar.width() * state_.Brightness(), kHeight)));
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(bar, kHeight / 2, kHeight / 2);
    painter.setClipping(false);
}

void PinRow::resizeEvent(QResizeEvent* event)
{
    PlaceControl();
    QWidget::resizeEvent(event);
}

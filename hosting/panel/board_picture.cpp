#include "board_picture.h"

#include "input_button.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMaxWidth = 440;

// Few different levels are drawn.
double Step(double level)
{
    constexpr int kSteps = 48;
    return std::ceil(level * kSteps) / kSteps;
}

}  // namespace

BoardPicture::BoardPicture(QWidget* parent) : QWidget(parent), button_(new InputButton(this))
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setMaximumWidth(kMaxWidth);
    setAccessibleName(tr("Board"));
    // The pin's own row has the button for the keyboard.
    button_->setFocusPolicy(Qt::NoFocus);
}

QSize BoardPicture::sizeHint() const
{
    const int width = qRound(kBoardSize.width());
    return {width, heightForWidth(width)};
}

int BoardPicture::heightForWidth(int width) const
{
    return qRound(width * kBoardSize.height() / kBoardSize.width());
}

double BoardPicture::Scale() const
{
    return width() / kBoardSize.width();
}

QRect BoardPicture::Place(const QRectF& rect) const
{
    return {(rect.topLeft() * Scale()).toPoint(), (rect.size() * Scale()).toSize()};
}

void BoardPicture::ShowPin(const QString& pin, const PinState& state)
{
    const double level = state.mode == PinState::Mode::Adc
                             ? static_cast<double>(state.analog) / PinState::kMax
                             : state.Brightness();
    const auto [place, isNew] = levels_.emplace(pin, level);
    if (!isNew && place->second == level) {
        return;
    }
    place->second = level;
    if (pin == kLedPin) {
        return update(Place(LightRect()).adjusted(-1, -1, 1, 1));
    }
    const auto pad = std::ranges::find(BoardPads(), pin, &Pad::pin);
    if (pad != BoardPads().end()) {
        update(Place(PadRect(*pad)).adjusted(-1, -1, 1, 1));
    }
}

void BoardPicture::SetOtherButton(InputButton* other)
{
    button_->SetOther(other);
    update();
}

void BoardPicture::Clear()
{
    levels_.clear();
    update();
}

void BoardPicture::RenderBoard()
{
    const double ratio = devicePixelRatioF();
    board_ = QPixmap(size() * ratio);
    board_.setDevicePixelRatio(ratio);
    board_.fill(Qt::transparent);
    QPainter painter(&board_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font());
    painter.scale(Scale(), Scale());
    DrawBoard(painter);
}

void BoardPicture::paintEvent(QPaintEvent* event)
{
    if (board_.size() != size() * devicePixelRatioF()) {
        RenderBoard();
    }
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : kDisabledOpacity);
    painter.drawPixmap(0, 0, board_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(Scale(), Scale());
    const auto isChanged = [&](const QRectF& rect) {
        return event->rect().intersects(Place(rect).adjusted(-1, -1, 1, 1));
    };
    for (const auto& pad : BoardPads()) {
        const auto level = levels_.find(pad.pin);
        if (level != levels_.end() && isChanged(PadRect(pad))) {
            const double shown = Step(level->second);
            const QColor color = palette().color(QPalette::Highlight).lighter(150);
            DrawCached(painter, PadRect(pad),
                       QString("pad %1 %2 %3").arg(pad.pin, color.name()).arg(shown),
                       [&](QPainter& inner) { DrawPad(inner, pad, shown, color); });
        }
    }
    if (isChanged(ButtonLabelRect())) {
        DrawButtonLabel(painter, button_->pin());
    }
    const auto led = levels_.find(kLedPin);
    if (led != levels_.end() && isChanged(LightRect())) {
        const double shown = Step(led->second);
        DrawCached(painter, LightRect(), QString("led %1").arg(shown),
                   [&](QPainter& inner) { DrawLed(inner, shown); });
    }
}

void BoardPicture::resizeEvent(QResizeEvent* event)
{
    button_->setGeometry(Place(kButtonRect));
    QWidget::resizeEvent(event);
}

#include "busy_widget.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int kSpokes = 12;
constexpr std::chrono::milliseconds kStep{80};

}  // namespace

BusyWidget::BusyWidget(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    timer_.setInterval(kStep);
    connect(&timer_, &QTimer::timeout, this, [this] {
        step_ = (step_ + 1) % kSpokes;
        update();
    });
}

void BusyWidget::Start()
{
    timer_.start();
    update();
}

void BusyWidget::Stop()
{
    timer_.stop();
    update();
}

void BusyWidget::paintEvent(QPaintEvent* /*event*/)
{
    if (!IsBusy()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = std::min(width(), height()) / 2.0;
    painter.translate(rect().center() + QPointF(0.5, 0.5));
    QColor color = palette().color(QPalette::WindowText);
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        color.setAlphaF(0.15F + 0.7F * static_cast<float>(spoke) / kSpokes);
        painter.setPen(QPen(color, radius / 5, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate((step_ + spoke) * 360.0 / kSpokes);
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius * 0.85));
        painter.restore();
    }
}

#include "window_widget.h"

#include <QCloseEvent>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace {

// Window systems decorate a window within this time after it has been shown.
constexpr std::chrono::seconds kCorrectionTime{2};
constexpr QMargins kScreenInset(10, 10, 10, 10);
constexpr int kGap = 8;

QMargins DecorationOf(const QWidget& widget)
{
    const auto* const handle = widget.windowHandle();
    return handle != nullptr ? handle->frameMargins() : QMargins();
}

QRect ShrunkInto(QRect frame, const QRect& area)
{
    frame.setSize(frame.size().boundedTo(area.size()));
    frame.moveRight(std::min(frame.right(), area.right()));
    frame.moveBottom(std::min(frame.bottom(), area.bottom()));
    frame.moveLeft(std::max(frame.left(), area.left()));
    frame.moveTop(std::max(frame.top(), area.top()));
    return frame;
}

}  // namespace

WindowWidget::WindowWidget(QWidget* parent) : QWidget(parent)
{
    auto* close = new QShortcut(QKeySequence::Close, this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
}

void WindowWidget::closeEvent(QCloseEvent* event)
{
    event->ignore();
    CallWindow(*this, [&] {
        const auto window = looper();
        if (window->QuitRequested()) {
            event->accept();
            window->Quit();
        }
    });
}

void WindowWidget::SetFrame(const QRect& frame)
{
    frame_ = frame;
    correct_.setRemainingTime(kCorrectionTime);
    ApplyFrame();
}

void WindowWidget::ApplyFrame()
{
    decoration_ = DecorationOf(*this);
    resize(frame_.marginsRemoved(decoration_).size());
    move(frame_.topLeft());
    if (auto* const handle = windowHandle()) {
        handle->setFramePosition(frame_.topLeft());  // move() may not know the decoration yet.
    }
}

void WindowWidget::CorrectFrame()
{
    const bool isAwaited = decoration_.isNull() && !correct_.hasExpired();
    if (isAwaited && !DecorationOf(*this).isNull()) {
        ApplyFrame();
    }
}

void WindowWidget::Place(const QWidget* neighbour)
{
    const QScreen& near = neighbour != nullptr ? *neighbour->screen() : *screen();
    const QRect area = near.availableGeometry().marginsRemoved(kScreenInset);
    if (neighbour != nullptr) {
        QRect frame = geometry().marginsAdded(DecorationOf(*neighbour));  // An estimate.
        frame.moveTopLeft(neighbour->frameGeometry().topRight() + QPoint(kGap, 0));
        return SetFrame(ShrunkInto(frame, area));
    }
    const QMargins titleBar(0, style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0);
    const QRect frame = geometry().marginsAdded(titleBar);
    if (frame.size() != frame.size().boundedTo(area.size())) {
        SetFrame(ShrunkInto(frame, area));
    }
}

void WindowWidget::moveEvent(QMoveEvent* event)
{
    QWidget::moveEvent(event);
    CorrectFrame();
}

void WindowWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    CorrectFrame();
}

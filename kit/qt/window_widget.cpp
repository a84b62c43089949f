#include "window_widget.h"

#include <QCloseEvent>
#include <QShortcut>

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

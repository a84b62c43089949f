#pragma once

#include "Window.h"
#include "window_description.h"
#include "window_widget.h"

#include <QPointer>

#include <utility>

// The implementation of a window with Qt. Owned by the window.
struct BWindow::Native {
    explicit Native(DescribedWindow described)
        : content(std::move(described)), widget(content.widget.get())
    {
    }
    explicit Native(QWidget* hostWidget) : widget(hostWidget) {}

    DescribedWindow content;   // Empty for one of the host's own windows.
    QPointer<QWidget> widget;  // The content's or the host's; null in a host without windows.
};

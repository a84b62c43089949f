#pragma once

#include "Window.h"
#include "window_description.h"
#include "window_widget.h"

#include <QPointer>

#include <utility>

// What a window is made of here. Owned by the window.
struct BWindow::Native {
    explicit Native(DescribedWindow described)
        : content(std::move(described)), onScreen(content.widget.get())
    {
    }
    explicit Native(QWidget* ofHost) : onScreen(ofHost) {}

    DescribedWindow content;     // Empty for a window of the host's.
    QPointer<QWidget> onScreen;  // Whoever owns it; null in a host without windows.
};

#pragma once

#include "View.h"

#include <QPainter>
#include <QWidget>

#include <memory>
#include <vector>

// The implementation of a view with Qt. Owned by the view. The widget is owned by the widget of its
// window, which is destroyed after the views.
struct BView::Native {
    explicit Native(QWidget* qtWidget) : widget(qtWidget) {}
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native() = default;

    // The widget, which must be of this class.
    template <class Widget>
    Widget& As() const
    {
        return static_cast<Widget&>(*widget);
    }

    QWidget* widget;
    std::vector<std::unique_ptr<BView>> children;
    QPainter* painter = nullptr;  // Not owned. Null except while the view draws.
    bool drawsSelection = false;  // Whether it draws on the colour of a selection.
};

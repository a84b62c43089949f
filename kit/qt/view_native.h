#pragma once

#include "View.h"

#include <QPainter>
#include <QWidget>

#include <memory>
#include <vector>

// What a view is made of here. Owned by the view; the widget belongs to its window's widget, which
// goes later than the views.
struct BView::Native {
    explicit Native(QWidget* theWidget) : widget(theWidget) {}
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native() = default;

    // The widget, which is of this kind.
    template <class Widget>
    Widget& As() const
    {
        return static_cast<Widget&>(*widget);
    }

    QWidget* widget;
    std::vector<std::unique_ptr<BView>> children;
    QPainter* painter = nullptr;  // While the view draws; not owned.
};

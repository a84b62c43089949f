#include "Window.h"

#include "Bundle.h"
#include "geometry_conversion.h"
#include "runtime.h"
#include "view_native.h"
#include "window_description.h"
#include "window_widget.h"

#include <QMenu>

#include <cmath>
#include <utility>

struct BWindow::Native {
    DescribedWindow content;
};

namespace {

BView* FindByTag(const std::vector<std::unique_ptr<BView>>& views, int tag)
{
    for (const auto& view : views) {
        if (TagOf(*view) == tag) {
            return view.get();
        }
        if (auto* found = FindByTag(view->native().children, tag)) {
            return found;
        }
    }
    return nullptr;
}

int Round(double coordinate)
{
    constexpr double kFarthest = 1e6;  // No screen is there.
    return static_cast<int>(std::lround(std::clamp(coordinate, -kFarthest, kFarthest)));
}

}  // namespace

BNotifier::~BNotifier() = default;

BWindow::BWindow(std::vector<std::function<void()>>& initialisers, const char* description,
                 const char* name, void* bundle)
    : native_(std::make_unique<Native>(
          LoadWindowDescription(ResourcePathFromBundle(bundle) + "/" + description + ".ui")))
{
    native_->content.widget->setObjectName(name);
    initialisers.emplace_back([this] { native_->content.widget->SetLooper(weak_from_this()); });
}

BWindow::~BWindow()
{
    auto* const widget = native_->content.widget.release();
    widget->hide();
    native_->content.views.clear();
    widget->deleteLater();
}

void BWindow::Show()
{
    native_->content.widget->show();
    Runtime::Current().Keep(shared_from_this());
}

void BWindow::Activate(bool active)
{
    if (active) {
        native_->content.widget->raise();
        native_->content.widget->activateWindow();
    }
}

void BWindow::Quit()
{
    const auto& widget = native_->content.widget;
    for (auto* menu : widget->findChildren<QMenu*>()) {
        menu->close();
    }
    widget->hide();
    BLooper::Quit();
}

BRect BWindow::Frame() const
{
    const auto& widget = native_->content.widget;
    return FromQt(QRectF(widget->pos(), widget->size()));
}

void BWindow::SetFrame(BRect frame)
{
    const auto& widget = native_->content.widget;
    widget->resize(Round(frame.Width()), Round(frame.Height()));
    widget->move(Round(frame.left), Round(frame.top));
}

BPoint BWindow::ConvertToScreen(BPoint point) const
{
    const auto origin = native_->content.widget->mapToGlobal(QPoint(0, 0));
    return {point.x + origin.x(), point.y + origin.y()};
}

int BWindow::CountChildren() const
{
    return static_cast<int>(native_->content.views.size());
}

BView* BWindow::ChildAt(int index) const
{
    const auto& views = native_->content.views;
    const bool isThere = index >= 0 && index < CountChildren();
    return isThere ? views[static_cast<std::size_t>(index)].get() : nullptr;
}

BView* BWindow::FindViewByTagDetails(int tag) const
{
    return FindByTag(native_->content.views, tag);
}

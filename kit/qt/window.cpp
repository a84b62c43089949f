#include "Window.h"

#include "geometry_conversion.h"
#include "plugin_bundle.h"
#include "runtime.h"
#include "view_native.h"
#include "window_native.h"

#include <QApplication>
#include <QMenu>

#include <cmath>
#include <utility>

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
    constexpr double kMaxCoordinate = 1e6;  // Outside every screen, and fits into an int.
    return static_cast<int>(std::lround(std::clamp(coordinate, -kMaxCoordinate, kMaxCoordinate)));
}

}  // namespace

BNotifier::~BNotifier() = default;

BWindow::BWindow(std::vector<std::function<void()>>& initialisers, const char* description,
                 const char* name, void* bundle)
    : native_(std::make_unique<Native>(
          LoadWindowDescription(ResourceFolder(bundle) + "/" + description + ".ui")))
{
    native_->content.widget->setObjectName(name);
    initialisers.emplace_back([this] { native_->content.widget->SetLooper(weak_from_this()); });
}

BWindow::BWindow(std::unique_ptr<Native> native) : native_(std::move(native)) {}

BWindow::~BWindow()
{
    if (auto* const widget = native_->content.widget.release()) {
        widget->hide();
        native_->content.views.clear();
        widget->deleteLater();
    }
}

void BWindow::Show()
{
    if (const auto& widget = native_->content.widget) {
        if (!widget->isVisible()) {
            widget->Place(QApplication::activeWindow());
        }
        widget->show();
        Runtime::Current().Keep(shared_from_this());
    }
}

void BWindow::Activate(bool active)
{
    const auto& widget = native_->content.widget;
    if (active && widget) {
        widget->raise();
        widget->activateWindow();
    }
}

void BWindow::Quit()
{
    if (const auto& widget = native_->content.widget) {
        for (auto* menu : widget->findChildren<QMenu*>()) {
            menu->close();
        }
        widget->hide();
        BLooper::Quit();
    }
}

BRect BWindow::Frame() const
{
    const auto& widget = native_->widget;
    return widget ? FromQt(QRectF(widget->frameGeometry())) : BRect();
}

void BWindow::SetFrame(BRect frame)
{
    if (const auto& widget = native_->content.widget) {
        widget->SetFrame(
            {Round(frame.left), Round(frame.top), Round(frame.Width()), Round(frame.Height())});
    }
}

BPoint BWindow::ConvertToScreen(BPoint point) const
{
    const auto& widget = native_->widget;
    const QPoint origin = widget ? widget->mapToGlobal(QPoint(0, 0)) : QPoint();
    return {point.x + origin.x(), point.y + origin.y()};
}

int BWindow::CountChildren() const
{
    return static_cast<int>(native_->content.views.size());
}

BView* BWindow::ChildAt(int index) const
{
    const auto& views = native_->content.views;
    const bool exists = index >= 0 && index < CountChildren();
    return exists ? views[static_cast<std::size_t>(index)].get() : nullptr;
}

BView* BWindow::FindViewByTagDetails(int tag) const
{
    return FindByTag(native_->content.views, tag);
}

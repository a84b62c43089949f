#pragma once

#include "Looper.h"
#include "runtime.h"

#include <QWidget>

#include <memory>

// What is on the screen for a BWindow. It goes somewhat later than that, since it may be handling
// the very event that ends it.
class WindowWidget final : public QWidget {
  public:
    explicit WindowWidget(QWidget* parent = nullptr);

    void SetLooper(std::weak_ptr<BLooper> looper) { looper_ = std::move(looper); }
    std::shared_ptr<BLooper> looper() const { return looper_.lock(); }

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    std::weak_ptr<BLooper> looper_;
};

// Calls into code of the window that this widget belongs to: keeps the window alive meanwhile, and
// does nothing when it is gone. Tells whether it called.
template <class Function>
bool CallWindow(const QWidget& widget, Function&& function)
{
    const auto* window = dynamic_cast<const WindowWidget*>(widget.window());
    const auto alive = window != nullptr ? window->looper() : nullptr;
    if (alive) {
        Runtime::Protect(std::forward<Function>(function));
    }
    return alive != nullptr;
}

#pragma once

#include "Looper.h"
#include "runtime.h"

#include <QDeadlineTimer>
#include <QWidget>

#include <memory>

// The widget of a BWindow. It is destroyed somewhat later than the BWindow, because it may be
// handling the event that closes the window. [ui]
class WindowWidget final : public QWidget {
  public:
    explicit WindowWidget(QWidget* parent = nullptr);

    void SetLooper(std::weak_ptr<BLooper> looper) { looper_ = std::move(looper); }
    std::shared_ptr<BLooper> looper() const { return looper_.lock(); }

    // Moves and resizes the window including its decoration. The decoration of a window that has
    // just been shown is not known yet; the size is corrected as soon as it is.
    void SetFrame(const QRect& frame);
    // Sets a first frame that fits the screen: beside the neighbour, or, if that is null, where the
    // window system places the window.
    void Place(const QWidget* neighbour);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ApplyFrame();
    void CorrectFrame();

    QRect frame_;             // As set last.
    QMargins decoration_;     // The decoration that was known when it was set.
    QDeadlineTimer correct_;  // It is corrected until then.
    std::weak_ptr<BLooper> looper_;
};

// Calls code of the window that this widget belongs to, and keeps the window alive during the call.
// Does nothing if the window no longer exists. Returns whether the function was called.
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

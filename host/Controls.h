#pragma once

#include "Looper.h"
#include "View.h"

#include <functional>
#include <string>

// The simple views. Made from a window's description; used on the user-interface thread.

class BButton final : public BView {
  public:
    using BView::BView;

    // Has the function run when the button is pressed: in the target, in the order of everything
    // that is delivered there, and not at all when the target is gone by then.
    void SetInvokeTarget(const BMessenger& target, const std::function<void()>& function);
};

// One line of plain text, shortened when it does not fit.
class BStringView final : public BView {
  public:
    using BView::BView;

    void SetText(const std::string& text);
};

// Spins while something is under way. Stopped and not visible when it is made.
class BProgressIndicator final : public BView {
  public:
    using BView::BView;

    void Start();
    void Stop();
};

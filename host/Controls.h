#pragma once

#include "Looper.h"
#include "View.h"

#include <functional>
#include <string>

// The simple views. They are created from a window's description. [ui]

class BButton final : public BView {
  public:
    using BView::BView;

    // Sets the function to run when the button is pressed. It is delivered to the target, in order
    // with everything else delivered there, and dropped if the target no longer exists by then.
    void SetInvokeTarget(const BMessenger& target, const std::function<void()>& function);
};

// One line of plain text, elided when it does not fit.
class BStringView final : public BView {
  public:
    using BView::BView;

    void SetText(const std::string& text);
};

// A spinner that shows that work is in progress. Initially stopped; invisible while it is stopped.
class BProgressIndicator final : public BView {
  public:
    using BView::BView;

    void Start();
    void Stop();
};

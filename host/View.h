#pragma once

#include "Geometry.h"

#include <memory>

class BBitmap;

// A view of a window. Made by the framework from the window's description and owned by the window,
// which outlives every call into it. Used on the user-interface thread.
class BView {
  public:
    struct Native;  // Completed in the framework.

    explicit BView(std::unique_ptr<Native> native);
    BView(const BView&) = delete;
    BView& operator=(const BView&) = delete;
    virtual ~BView();

    int CountChildren() const;
    // In the order of the description; null when there is none.
    BView* ChildAt(int index) const;

    // The platform's view behind this one, for the calls of AppKit.h.
    template <class Pointer>
    Pointer KitView() const
    {
        return static_cast<Pointer>(KitViewPointer());
    }

    // Draws a part of the bitmap into a rectangle of the view. Only while the view draws.
    void DrawBitmap(const BBitmap* bitmap, BRect source, BRect destination);

    // For the framework.
    Native& native() const { return *native_; }

  protected:
    virtual void* KitViewPointer() const { return nullptr; }

  private:
    std::unique_ptr<Native> native_;
};

#pragma once

#include "Geometry.h"

#include <memory>

class BBitmap;

// A view of a window. Created by the framework from the window's description and owned by the
// window, which outlives every call into the view. [ui]
class BView {
  public:
    struct Native;  // Defined in the framework.

    explicit BView(std::unique_ptr<Native> native);
    BView(const BView&) = delete;
    BView& operator=(const BView&) = delete;
    virtual ~BView();

    int CountChildren() const;
    // Children are in the order of the description. Null if there is no such child.
    BView* ChildAt(int index) const;

    // The underlying view of the platform, for the functions of AppKit.h.
    template <class Pointer>
    Pointer KitView() const
    {
        return static_cast<Pointer>(KitViewPointer());
    }

    // Draws the bitmap into a rectangle of the view. `source` must be the bitmap's bounds. Works
    // only while the view is being drawn.
    void DrawBitmap(const BBitmap* bitmap, BRect source, BRect destination);

    // For the framework only.
    Native& native() const { return *native_; }

  protected:
    virtual void* KitViewPointer() const { return nullptr; }

  private:
    std::unique_ptr<Native> native_;
};

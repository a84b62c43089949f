#pragma once

#include "Geometry.h"

#include <memory>

// A picture that is sharp at every screen scale. A copyable value. [ui]
class BBitmap {
  public:
    struct Content;  // Defined in the framework.

    // An empty picture, whatever the bounds. `colorSpace` is always 4: colours with transparency.
    BBitmap(BRect bounds, unsigned colorSpace);

    BRect Bounds() const { return bounds_; }

    // For the framework only.
    void SetContent(std::shared_ptr<const Content> content, BRect bounds);
    const Content* content() const { return content_.get(); }

  private:
    BRect bounds_;
    std::shared_ptr<const Content> content_;
};

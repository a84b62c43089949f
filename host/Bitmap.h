#pragma once

#include "Geometry.h"

#include <memory>

// A picture, which is sharp at every scale of the screen. A copyable value.
class BBitmap {
  public:
    struct Content;  // Completed in the framework.

    // Empty, whatever its bounds are. `colorSpace` is always 4: colours with transparency.
    BBitmap(BRect bounds, unsigned colorSpace);

    BRect Bounds() const { return bounds_; }

    // For the framework.
    void SetContent(std::shared_ptr<const Content> content, BRect bounds);
    const Content* content() const { return content_.get(); }

  private:
    BRect bounds_;
    std::shared_ptr<const Content> content_;
};

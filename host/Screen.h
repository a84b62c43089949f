#pragma once

#include "Geometry.h"

// Provides information about the screens. [ui]
class BScreen {
  public:
    // The usable frame, without panels, of the screen that contains the point, or of the nearest
    // screen if none does.
    static BRect MaxWindowFrameWithHint(BPoint point);
};

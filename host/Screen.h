#pragma once

#include "Geometry.h"

class BScreen {
  public:
    // The usable frame, without panels, of the screen that holds the point; of the nearest one
    // where the point is on none. Used on the user-interface thread.
    static BRect MaxWindowFrameWithHint(BPoint point);
};

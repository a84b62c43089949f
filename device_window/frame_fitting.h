#pragma once

#include "Geometry.h"

// Returns the frame, moved into `area` minus `inset` on each side. The size does not change: the
// right and bottom edges of a frame that is too large lie on the limit.
BRect FitInto(BRect frame, BRect area, float inset);

// The same for the usable area of the screen that contains the frame's top left corner, or of the
// nearest screen.
BRect FitOnScreen(BRect frame, float inset);

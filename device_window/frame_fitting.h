#pragma once

#include "Geometry.h"

// The frame, moved so that it lies within `area` less `inset` on each side; its size stays. Where
// it is too large its right and bottom edges lie on the limit.
BRect FitInto(BRect frame, BRect area, float inset);

// The same within the usable area of the screen that holds the frame's left top corner, or of the
// nearest one.
BRect FitOnScreen(BRect frame, float inset);

#pragma once

// Points and rectangles in points, the unit of a screen at scale 1; the y axis points downwards.

struct BPoint {
    double x = 0;
    double y = 0;
};

// Right and bottom lie outside.
struct BRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    double Width() const { return right - left; }
    double Height() const { return bottom - top; }
    bool operator==(const BRect&) const = default;
};

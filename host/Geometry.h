#pragma once

// Positions and rectangles. The unit is the point: one pixel of a screen at scale 1. The y axis
// points down. All are copyable values. [any]

struct BPoint {
    double x = 0;
    double y = 0;
};

// A rectangle; the right and bottom edges are exclusive.
struct BRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    double Width() const { return right - left; }
    double Height() const { return bottom - top; }
    bool operator==(const BRect&) const = default;
};

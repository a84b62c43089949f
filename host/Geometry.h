#pragma once

// A rectangle in points, the y axis downwards. Right and bottom lie outside.
struct BRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

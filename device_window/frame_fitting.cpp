#include "frame_fitting.h"

#include "Screen.h"

namespace {

// Moves both edges along one axis.
void FitEdges(double& near, double& far, double low, double high)
{
    double shift = 0;
    if (far > high) {
        shift = high - far;
    } else if (near < low) {
        shift = low - near;
    }
    // The shift has single precision, so that saved frames are restored as they always were.
    shift = static_cast<double>(static_cast<float>(shift));
    near += shift;
    far += shift;
}

}  // namespace

BRect FitInto(BRect frame, BRect area, float inset)
{
    const auto margin = static_cast<double>(inset);
    FitEdges(frame.left, frame.right, area.left + margin, area.right - margin);
    FitEdges(frame.top, frame.bottom, area.top + margin, area.bottom - margin);
    return frame;
}

BRect FitOnScreen(BRect frame, float inset)
{
    return FitInto(frame, BScreen::MaxWindowFrameWithHint({frame.left, frame.top}), inset);
}

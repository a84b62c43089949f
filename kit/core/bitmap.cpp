#include "Bitmap.h"

#include <utility>

BBitmap::BBitmap(BRect bounds, unsigned /*colorSpace*/) : bounds_(bounds) {}

void BBitmap::SetContent(std::shared_ptr<const Content> content, BRect bounds)
{
    content_ = std::move(content);
    bounds_ = bounds;
}

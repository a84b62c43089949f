#include "Bitmap.h"
#include "bitmap_content.h"
#include "geometry_conversion.h"
#include "view_native.h"

#include <cstddef>
#include <utility>

BView::BView(std::unique_ptr<Native> native) : native_(std::move(native)) {}

BView::~BView() = default;

int BView::CountChildren() const
{
    return static_cast<int>(native_->children.size());
}

BView* BView::ChildAt(int index) const
{
    const bool exists = index >= 0 && index < CountChildren();
    return exists ? native_->children[static_cast<std::size_t>(index)].get() : nullptr;
}

void BView::DrawBitmap(const BBitmap* bitmap, BRect source, BRect destination)
{
    if (native_->painter == nullptr || bitmap->content() == nullptr ||
        !(source == bitmap->Bounds())) {
        return;
    }
    bitmap->content()->icon.paint(native_->painter, ToQt(destination).toAlignedRect(),
                                  Qt::AlignCenter,
                                  native_->widget->isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

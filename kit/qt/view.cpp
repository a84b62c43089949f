#include "Bitmap.h"
#include "bitmap_content.h"
#include "geometry_conversion.h"
#include "view_native.h"

#include <cstddef>
#include <utility>

namespace {

// Icons are made for the colour of a list. A plate of this colour makes them visible on a
// selection.
void DrawPlate(QPainter& painter, const QRect& area, const QColor& color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(area).adjusted(-1, -1, 1, 1), 3, 3);
    painter.restore();
}

}  // namespace

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
    const QRect area = ToQt(destination).toAlignedRect();
    if (native_->drawsSelection) {
        DrawPlate(*native_->painter, area, native_->widget->palette().color(QPalette::Base));
    }
    bitmap->content()->icon.paint(native_->painter, area, Qt::AlignCenter,
                                  native_->widget->isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

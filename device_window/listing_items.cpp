#include "listing_items.h"

#include "Bitmap.h"
#include "NodeInfo.h"
#include "Text.h"
#include "icon_format.h"
#include "name_fitting.h"

namespace {

constexpr double kSizeMargin = 4.0;

int GetIcon(const IconTableItem& item, BBitmap* bitmap)
{
    if (item.isDirectory) {
        return BNodeInfo::GetTrackerIconFromType(kFolderIconType, bitmap, kIconSize, false);
    }
    if (item.name.find('.') != std::string::npos) {
        return BNodeInfo::GetTrackerIconFromName(item.name.c_str(), bitmap, kIconSize, false);
    }
    return BNodeInfo::GetTrackerIconFromType(kDocumentIconType, bitmap, kIconSize, false);
}

}  // namespace

IconTableItem::IconTableItem(const std::string_view& itemName, const std::string_view& itemPath,
                             bool directory)
    : FTableItem(std::string(itemName)), name(itemName), path(itemPath), isDirectory(directory)
{
}

void IconTableItem::DrawItem(BOutlineTableView* view, BRect cell)
{
    BRect textCell = cell;
    BBitmap icon({0, 0, -1, -1}, kColorsWithAlpha);
    if (GetIcon(*this, &icon) == 0) {
        textCell.left += cell.Height();
        view->DrawBitmap(&icon, icon.Bounds(),
                         {cell.left, cell.top, cell.left + kIconSize, cell.top + kIconSize});
    }
    SetText(FitName(name, textCell.Width(),
                    [this](std::string_view text) { return MeasureText(text); }));
    FTableItem::DrawItem(view, textCell);
}

SizeTableItem::SizeTableItem(const std::string_view& size)
    : FTableItem(std::string(size)), sizeText(size)
{
}

void SizeTableItem::DrawItem(BOutlineTableView* view, BRect cell)
{
    const auto measure = [this](const std::string_view& text) { return MeasureText(text); };
    SetText(SizeStringForBounds(sizeText, fitChoice, fitWidth, static_cast<float>(cell.Width()),
                                measure));
    cell.left = cell.right - static_cast<double>(MeasureText(Text())) - kSizeMargin;
    FTableItem::DrawItem(view, cell);
}

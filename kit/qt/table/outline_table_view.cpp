#include "OutlineTableView.h"

#include "Menu.h"
#include "display_text.h"
#include "geometry_conversion.h"
#include "menu_widget.h"
#include "runtime.h"
#include "table_native.h"
#include "table_widget.h"

#include <QApplication>
#include <QFontMetricsF>

#include <utility>

namespace {

constexpr double kTextMargin = 4;

TableWidget& Widget(const BView& view)
{
    return view.native().As<TableWidget>();
}

}  // namespace

FTableItem::~FTableItem() = default;

void FTableItem::DrawItem(BOutlineTableView* view, BRect cell)
{
    QPainter* const painter = view->native().painter;
    if (painter == nullptr) {
        return;
    }
    const QRectF area = ToQt(cell).adjusted(kTextMargin, -kTextMargin, kTextMargin, kTextMargin);
    painter->drawText(area, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                      DisplayText(text_));
}

float FTableItem::MeasureText(std::string_view text) const
{
    const QFont font = table_ != nullptr ? Widget(*table_).font() : QApplication::font();
    return static_cast<float>(QFontMetricsF(font).horizontalAdvance(DisplayText(text)));
}

BOutlineTableView::BOutlineTableView(std::unique_ptr<Native> native) : BView(std::move(native))
{
    Widget(*this).handlers.drawItem = [this](QPainter& painter, FTableItem& item, BRect cell,
                                             bool isSelected) {
        BView::native().painter = &painter;
        BView::native().drawsSelection = isSelected;
        Runtime::Protect([&] { item.DrawItem(this, cell); });
        BView::native().painter = nullptr;
    };
}

BOutlineTableView::~BOutlineTableView()
{
    Widget(*this).handlers = {};
    Widget(*this).ClearRows();
}

void BOutlineTableView::Clear()
{
    Widget(*this).ClearRows();
}

int BOutlineTableView::CountRows() const
{
    return Widget(*this).rows().CountRows();
}

void BOutlineTableView::AddItem(FTableItem* item, int row, int column)
{
    item->table_ = this;
    Widget(*this).rows().SetItem(std::unique_ptr<FTableItem>(item), row, column);
}

FTableItem* BOutlineTableView::ItemAt(int row, int column) const
{
    return Widget(*this).rows().ItemAt(row, column);
}

void BOutlineTableView::Select(int row, bool extend)
{
    Widget(*this).SelectRow(row, extend);
}

std::vector<FTableItem*> BOutlineTableView::SelectedItems() const
{
    std::vector<FTableItem*> items;
    for (const int row : Widget(*this).SelectedRows()) {
        items.push_back(ItemAt(row, 0));
    }
    return items;
}

void BOutlineTableView::SetInvoker(const std::function<void(FTableItem*, int, int)>& invoker)
{
    Widget(*this).handlers.invoke = [this, invoker](int row, int column) {
        invoker(ItemAt(row, 0), row, column);
    };
}

void BOutlineTableView::SetKeyDownHandler(
    const std::function<bool(BOutlineTableView*, const char*, int)>& handler)
{
    Widget(*this).handlers.keyDown = [this, handler](const char* bytes, int numBytes) {
        return handler(this, bytes, numBytes);
    };
}

void BOutlineTableView::SetMenu(BMenu* menu)
{
    auto& own = static_cast<TableNative&>(native()).menu;
    own.reset(menu);
    Widget(*this).handlers.showMenu = [this, &own](const QPoint& at, MenuOpening opening) {
        if (auto* const widget = MakeWindowMenu(Widget(*this), *own)) {
            ActivateItem(*widget, widget->actions().value(0), opening);
            widget->popup(at);
        }
    };
}

void BOutlineTableView::SetDropValidator(
    const std::function<int(objc_object*, objc_object*, int)>& validator)
{
    Widget(*this).handlers.validateDrop = validator;
}

void BOutlineTableView::SetAcceptDrop(
    const std::function<bool(objc_object*, objc_object*, int)>& acceptor)
{
    Widget(*this).handlers.acceptDrop = acceptor;
}

FTableItem* BOutlineTableView::ItemForID(objc_object* row, int column) const
{
    const auto& rows = Widget(*this).rows();
    if (!rows.Contains(row)) {
        return nullptr;
    }
    const auto& cells = static_cast<const TableRow*>(row)->cells;
    const bool exists = column >= 0 && column < std::ssize(cells);
    return exists ? cells[static_cast<std::size_t>(column)].get() : nullptr;
}

void* BOutlineTableView::KitViewPointer() const
{
    return static_cast<NSOutlineView*>(&Widget(*this));
}

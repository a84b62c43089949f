#include "row_painter.h"

#include "table_widget.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr double kCellMargin = 6;
constexpr double kCellHeight = 16;  // The height of an icon.
constexpr int kMinRowHeight = 22;

// The text is muted in all columns but the first, except in selected rows.
QColor TextColor(const QStyleOptionViewItem& option, int column)
{
    const auto group =
        option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    if (option.state.testFlag(QStyle::State_Selected)) {
        return option.palette.color(group, QPalette::HighlightedText);
    }
    QColor color = option.palette.color(group, QPalette::Text);
    if (column > 0) {
        color.setAlphaF(0.7F);
    }
    return color;
}

BRect CellIn(const QRectF& area)
{
    const double top = area.center().y() - kCellHeight / 2;
    return {area.left() + kCellMargin, top, area.right() - kCellMargin, top + kCellHeight};
}

}  // namespace

RowPainter::RowPainter(TableWidget& table) : QStyledItemDelegate(&table), table_(table) {}

void RowPainter::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const
{
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    table_.style()->drawControl(QStyle::CE_ItemViewItem, &background, painter, &table_);
    auto* const item = table_.rows().ItemAt(index.row(), index.column());
    if (item == nullptr || !table_.handlers.drawItem) {
        return;
    }
    painter->save();
    painter->setClipRect(option.rect, Qt::IntersectClip);
    painter->setFont(option.font);
    painter->setPen(TextColor(option, index.column()));
    table_.handlers.drawItem(*painter, *item, CellIn(option.rect),
                             option.state.testFlag(QStyle::State_Selected));
    painter->restore();
}

QSize RowPainter::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const
{
    return {0, std::max(option.fontMetrics.height() + 6, kMinRowHeight)};
}

#pragma once

#include <QStyledItemDelegate>

class TableWidget;

// Draws the background of a cell in the widget style and lets the cell's item draw the content.
class RowPainter final : public QStyledItemDelegate {
  public:
    explicit RowPainter(TableWidget& table);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    TableWidget& table_;
};

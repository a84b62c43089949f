#pragma once

#include <QStyledItemDelegate>

class TableWidget;

// Draws the background of a cell as the style does, and has the cell's item draw itself upon it.
class RowPainter final : public QStyledItemDelegate {
  public:
    explicit RowPainter(TableWidget& table);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    TableWidget& table_;
};

#pragma once

#include "OutlineTableView.h"
#include "app_kit_objects.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

// One row; also the object that stands for it in drag and drop.
struct TableRow : objc_object {
    std::vector<std::unique_ptr<FTableItem>> cells;
};

// The rows of a table. New rows are announced together, some thirty times a second: a view lays out
// all of its rows for each announcement, and paints.
class TableModel final : public QAbstractTableModel {
  public:
    explicit TableModel(QObject* parent);

    void SetColumns(const QStringList& titles);

    // All rows, announced or not.
    int CountRows() const { return static_cast<int>(rows_.size()); }
    void Clear();
    // `row` may be CountRows() at most.
    void SetItem(std::unique_ptr<FTableItem> item, int row, int column);
    FTableItem* ItemAt(int row, int column) const;
    TableRow* RowAt(int row) const;
    // Whether the object stands for a row that is there.
    bool Holds(const objc_object* row) const;

    // Announces what is new.
    void Publish();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    void PublishSoon();

    QStringList titles_;
    std::vector<std::unique_ptr<TableRow>> rows_;
    int published_ = 0;
    bool willPublish_ = false;
};

#pragma once

#include "OutlineTableView.h"
#include "app_kit_objects.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

// A row, which is also its row object in drag and drop.
struct TableRow : objc_object {
    std::vector<std::unique_ptr<FTableItem>> cells;
};

// The rows of a table. New rows are published to the view in batches, about thirty times a second,
// because the view lays out all of its rows and repaints each time. [ui]
class TableModel final : public QAbstractTableModel {
  public:
    explicit TableModel(QObject* parent);

    void SetColumns(const QStringList& titles);

    // The number of all rows, published or not.
    int CountRows() const { return static_cast<int>(rows_.size()); }
    void Clear();
    // `row` may be CountRows() at most.
    void SetItem(std::unique_ptr<FTableItem> item, int row, int column);
    FTableItem* ItemAt(int row, int column) const;
    TableRow* RowAt(int row) const;
    // Whether the object is one of the rows.
    bool Contains(const objc_object* row) const;

    // Publishes all new rows to the view now.
    void Publish();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    void SchedulePublish();

    QStringList titles_;
    std::vector<std::unique_ptr<TableRow>> rows_;
    int published_ = 0;
    bool publishScheduled_ = false;
};

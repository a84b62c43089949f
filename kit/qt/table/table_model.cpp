#include "table_model.h"

#include "display_text.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

// Publishing each row by itself would take processor time from the tool while it lists files.
constexpr std::chrono::milliseconds kPublishInterval{30};

}  // namespace

TableModel::TableModel(QObject* parent) : QAbstractTableModel(parent) {}

void TableModel::SetColumns(const QStringList& titles)
{
    beginResetModel();
    titles_ = titles;
    endResetModel();
}

void TableModel::Clear()
{
    beginResetModel();
    rows_.clear();
    published_ = 0;
    endResetModel();
}

void TableModel::SetItem(std::unique_ptr<FTableItem> item, int row, int column)
{
    if (row < 0 || row > CountRows() || column < 0) {
        return;
    }
    if (row == CountRows()) {
        rows_.push_back(std::make_unique<TableRow>());
        SchedulePublish();
    }
    auto& cells = RowAt(row)->cells;
    const auto at = static_cast<std::size_t>(column);
    if (cells.size() <= at) {
        cells.reserve(static_cast<std::size_t>(titles_.size()));
        cells.resize(at + 1);
    }
    cells[at] = std::move(item);
    if (row < published_) {
        Q_EMIT dataChanged(index(row, column), index(row, column));
    }
}

TableRow* TableModel::RowAt(int row) const
{
    return row >= 0 && row < CountRows() ? rows_[static_cast<std::size_t>(row)].get() : nullptr;
}

FTableItem* TableModel::ItemAt(int row, int column) const
{
    const auto* found = RowAt(row);
    const bool exists = found != nullptr && column >= 0 && column < std::ssize(found->cells);
    return exists ? found->cells[static_cast<std::size_t>(column)].get() : nullptr;
}

bool TableModel::Contains(const objc_object* row) const
{
    return std::ranges::any_of(rows_,
                               [row](const auto& candidate) { return candidate.get() == row; });
}

void TableModel::SchedulePublish()
{
    if (!std::exchange(publishScheduled_, true)) {
        QTimer::singleShot(kPublishInterval, this, &TableModel::Publish);
    }
}

void TableModel::Publish()
{
    publishScheduled_ = false;
    if (published_ < CountRows()) {
        beginInsertRows({}, published_, CountRows() - 1);
        published_ = CountRows();
        endInsertRows();
    }
}

int TableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : published_;
}

int TableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(titles_.size());
}

// The text is used for keyboard search and by screen readers only: the items draw themselves.
QVariant TableModel::data(const QModelIndex& index, int role) const
{
    const auto* item = ItemAt(index.row(), index.column());
    if (item != nullptr && role == Qt::DisplayRole) {
        return QString::fromStdString(item->Text());
    }
    const bool isShortened =
        item != nullptr && index.column() == 0 && item->Text() != item->FullText();
    return role == Qt::ToolTipRole && isShortened ? ToolTipText(DisplayText(item->FullText()))
                                                  : QVariant();
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        return titles_.value(section);
    }
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole) {
        return QVariant(Qt::AlignVCenter | (section == 0 ? Qt::AlignLeft : Qt::AlignRight));
    }
    return {};
}

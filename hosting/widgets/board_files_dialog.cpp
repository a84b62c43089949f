#include "board_files_dialog.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr QSize kSize(560, 420);

bool MovesInList(int key)
{
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
           key == Qt::Key_PageDown;
}

}  // namespace

BoardFilesDialog::BoardFilesDialog(const QString& title, const QString& accept, QWidget* parent)
    : QDialog(parent),
      filter_(new QLineEdit(this)),
      list_(new QTreeWidget(this)),
      count_(new QLabel(tr("Listing the board…"), this))
{
    setWindowTitle(title);
    resize(kSize);
    filter_->setPlaceholderText(tr("Filter"));
    filter_->setAccessibleName(tr("Filter"));
    filter_->setClearButtonEnabled(true);
    filter_->installEventFilter(this);
    list_->setHeaderLabels({tr("File"), tr("Size")});
    list_->setAccessibleName(tr("Files of the board"));
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    accept_ = buttons->addButton(accept, QDialogButtonBox::AcceptRole);
    accept_->setDefault(true);
    accept_->setEnabled(false);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(filter_);
    column->addWidget(list_);
    column->addWidget(count_);
    column->addWidget(buttons);
    connect(filter_, &QLineEdit::textChanged, this, &BoardFilesDialog::Filter);
    connect(list_, &QTreeWidget::itemDoubleClicked, this, &BoardFilesDialog::Choose);
    connect(buttons, &QDialogButtonBox::accepted, this, &BoardFilesDialog::Choose);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void BoardFilesDialog::SetEntries(const std::vector<BoardEntry>& entries)
{
    entries_ = entries;
    QList<QTreeWidgetItem*> items;
    for (const auto& entry : entries_) {
        const QString path = QString::fromStdString(entry.path);
        const QString size = entry.isDirectory ? QString() : QLocale().toString(entry.size);
        auto* const item = new QTreeWidgetItem({entry.isDirectory ? path + "/" : path, size});
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        items.append(item);
    }
    list_->addTopLevelItems(items);
    Filter();
}

// Each word that was typed must be in the path. The first match becomes the current one.
void BoardFilesDialog::Filter()
{
    const auto words = filter_->text().split(' ', Qt::SkipEmptyParts);
    QTreeWidgetItem* first = nullptr;
    int matches = 0;
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        auto* const item = list_->topLevelItem(i);
        const bool matchesAll = std::ranges::all_of(words, [item](const QString& word) {
            return item->text(0).contains(word, Qt::CaseInsensitive);
        });
        item->setHidden(!matchesAll);
        matches += matchesAll ? 1 : 0;
        first = first == nullptr && matchesAll ? item : first;
    }
    list_->setCurrentItem(first);
    accept_->setEnabled(first != nullptr);
    count_->setText(matches == 1 ? tr("1 entry") : tr("%1 entries").arg(matches));
}

void BoardFilesDialog::Choose()
{
    const int row = list_->indexOfTopLevelItem(list_->currentItem());
    if (row < 0 || list_->currentItem()->isHidden()) {
        return;
    }
    const BoardEntry chosen = entries_.at(static_cast<std::size_t>(row));
    accept();
    Q_EMIT Chosen(chosen);
}

bool BoardFilesDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == filter_ && event->type() == QEvent::KeyPress) {
        auto* const keys = static_cast<QKeyEvent*>(event);
        if (MovesInList(keys->key())) {
            QCoreApplication::sendEvent(list_, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

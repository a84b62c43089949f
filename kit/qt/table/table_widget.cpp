#include "table_widget.h"

#include "key_events.h"
#include "qt_version.h"
#include "row_painter.h"
#include "window_widget.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QPainter>

#include <algorithm>
#include <chrono>

namespace {

constexpr int kSizeColumnWidth = 110;
constexpr int kMinNameWidth = 60;
// A drop this close to the edge of a row is a drop between rows.
constexpr int kRowEdge = 3;

}  // namespace

TableWidget::TableWidget(QWidget* parent) : QTreeView(parent), model_(new TableModel(this))
{
    setModel(model_);
    setItemDelegate(new RowPainter(*this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setItemsExpandable(false);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setDropIndicatorShown(false);
    setDragDropMode(NoDragDrop);
    header()->setSectionsMovable(false);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(kMinNameWidth);
}

void TableWidget::SetColumns(const QStringList& titles)
{
    columns_ = titles;
    model_->SetColumns(titles);
    for (int column = 0; column < titles.size(); ++column) {
        header()->setSectionResizeMode(column,
                                       column == 0 ? QHeaderView::Stretch : QHeaderView::Fixed);
        header()->resizeSection(column, kSizeColumnWidth);
    }
}

std::vector<int> TableWidget::SelectedRows() const
{
    std::vector<int> rows;
    for (const auto& index : selectionModel()->selectedRows()) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

void TableWidget::SelectRow(int row, bool extend)
{
    model_->Publish();
    const auto index = model_->index(row, 0);
    if (!index.isValid()) {
        return;
    }
    using Selection = QItemSelectionModel;
    selectionModel()->setCurrentIndex(
        index, (extend ? Selection::Select : Selection::ClearAndSelect) | Selection::Rows);
    scrollTo(index);
}

void TableWidget::ClearRows()
{
    target_ = {};  // Its row is about to be deleted.
    model_->Clear();
}

// --- Keys and the mouse

bool TableWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        // Otherwise a shortcut of the window would take the key before the handler gets it.
        const bool isChord = key.modifiers().testFlag(Qt::ControlModifier) &&
                             (key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Up ||
                              key.key() == Qt::Key_Down);
        if (isChord && handlers.keyDown) {
            event->accept();
            return true;
        }
    }
    return QTreeView::event(event);
}

bool TableWidget::HandleKey(const QKeyEvent& event)
{
    const QByteArray bytes = KeyBytes(event);
    bool handled = false;
    if (handlers.keyDown && !bytes.isEmpty()) {
        const KeyEventScope scope(event);
        const auto keyDown = handlers.keyDown;
        CallWindow(*this,
                   [&] { handled = keyDown(bytes.constData(), static_cast<int>(bytes.size())); });
    }
    return handled;
}

void TableWidget::keyPressEvent(QKeyEvent* event)
{
    if (HandleKey(*event)) {
        return;
    }
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & ~Qt::KeypadModifier) == 0) {
        return Invoke(currentIndex());
    }
    QTreeView::keyPressEvent(event);
}

void TableWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) {
        Invoke(indexAt(PositionOf(*event)));
    }
}

void TableWidget::Invoke(const QModelIndex& index)
{
    if (index.isValid() && handlers.invoke) {
        CallWindow(*this, [&] { handlers.invoke(index.row(), index.column()); });
    }
}

void TableWidget::contextMenuEvent(QContextMenuEvent* event)
{
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    QPoint at = event->globalPos();
    if (byKey) {
        scrollTo(currentIndex());
        at = viewport()->mapToGlobal(visualRect(currentIndex()).center());
    }
    if (handlers.showMenu) {
        CallWindow(*this, [&] {
            handlers.showMenu(at, byKey ? MenuOpening::ByKey : MenuOpening::ByMouse);
        });
    }
    event->accept();
}

// --- Drag and drop

TableWidget::DropTarget TableWidget::ProposeTarget(const QPoint& at) const
{
    const auto index = indexAt(at);
    if (!index.isValid()) {
        return {nullptr, model_->CountRows()};
    }
    const QRect row = visualRect(index);
    if (at.y() < row.top() + kRowEdge) {
        return {nullptr, index.row()};
    }
    if (at.y() > row.bottom() - kRowEdge) {
        return {nullptr, index.row() + 1};
    }
    return {model_->RowAt(index.row()), -1};
}

// The drag operation at the current position of the drag. The validator may change target_.
int TableWidget::Validate(const QDropEvent& event)
{
    target_ = ProposeTarget(PositionOf(event));
    int operation = NSDragOperationNone;
    if (handlers.validateDrop && event.possibleActions().testFlag(Qt::CopyAction)) {
        DraggingInfo info(event.mimeData());
        CallWindow(*this,
                   [&] { operation = handlers.validateDrop(&info, target_.row, target_.index); });
    }
    return operation;
}

void TableWidget::ShowDropTarget(bool show)
{
    showsTarget_ = show;
    viewport()->update();
}

void TableWidget::dragEnterEvent(QDragEnterEvent* event)
{
    dragMoveEvent(event);
}

void TableWidget::dragMoveEvent(QDragMoveEvent* event)
{
    const bool accepts = Validate(*event) == NSDragOperationCopy;
    ShowDropTarget(accepts);
    if (accepts) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
        startAutoScroll();
    } else {
        event->ignore();
    }
}

void TableWidget::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    stopAutoScroll();
    ShowDropTarget(false);
}

void TableWidget::dropEvent(QDropEvent* event)
{
    stopAutoScroll();
    ShowDropTarget(false);
    event->ignore();
    // Validate again: the rows may have changed since the last move.
    if (Validate(*event) != NSDragOperationCopy || !handlers.acceptDrop) {
        return;
    }
    DraggingInfo info(event->mimeData());
    bool accepted = false;
    CallWindow(*this, [&] { accepted = handlers.acceptDrop(&info, target_.row, target_.index); });
    if (accepted) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

// Only the frame marks a selected row, since that already has the colour of the fill.
void TableWidget::PaintRowMark(QPainter& painter, const QModelIndex& index)
{
    QRect area = visualRect(index);
    area.setRight(viewport()->width() - 1);
    const bool isSelected = selectionModel()->isSelected(index);
    QColor fill = palette().color(QPalette::Highlight);
    fill.setAlpha(isSelected ? 0 : 70);
    painter.fillRect(area, fill);
    painter.setPen(
        QPen(palette().color(isSelected ? QPalette::HighlightedText : QPalette::Highlight), 2));
    painter.drawRect(area.adjusted(2, 2, -2, -2));
}

void TableWidget::PaintDropTarget()
{
    QPainter painter(viewport());
    for (int row = 0; target_.row != nullptr && row < model_->rowCount(); ++row) {
        if (model_->RowAt(row) == target_.row) {
            PaintRowMark(painter, model_->index(row, 0));
            return;
        }
    }
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
}

void TableWidget::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (showsTarget_) {
        PaintDropTarget();
    }
}

#pragma once

#include "OutlineTableView.h"
#include "app_kit_objects.h"
#include "menu_widget.h"
#include "table_model.h"

#include <QTreeView>

#include <functional>

// The widget of a table. It passes drawing, keys, the context menu and drops to handlers, as long
// as the window exists. The property "columns" names the columns; the first one takes the space
// that the others leave. [ui]
class TableWidget final : public QTreeView, public NSOutlineView {
    Q_OBJECT
    Q_PROPERTY(QStringList columns READ columns WRITE SetColumns)

  public:
    explicit TableWidget(QWidget* parent);

    QStringList columns() const { return columns_; }
    void SetColumns(const QStringList& titles);
    TableModel& rows() { return *model_; }
    // The selected rows, from top to bottom.
    std::vector<int> SelectedRows() const;
    void SelectRow(int row, bool extend);
    void ClearRows();

    // Handlers of the window's code. The window is kept alive during each call.
    struct Handlers {
        std::function<void(int row, int column)> invoke;
        std::function<bool(const char* bytes, int numBytes)> keyDown;
        std::function<int(objc_object* info, objc_object* row, int index)> validateDrop;
        std::function<bool(objc_object* info, objc_object* row, int index)> acceptDrop;
        std::function<void(const QPoint& at, MenuOpening opening)> showMenu;
        std::function<void(QPainter& painter, FTableItem& item, BRect cell, bool isSelected)>
            drawItem;
    };
    Handlers handlers;

    void SetAcceptsFiles(bool accepts) override { viewport()->setAcceptDrops(accepts); }
    void SetDropTarget(objc_object* row, int index) override { target_ = {row, index}; }

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    struct DropTarget {
        objc_object* row = nullptr;
        int index = -1;
    };

    bool HandleKey(const QKeyEvent& event);
    void Invoke(const QModelIndex& index);
    DropTarget ProposeTarget(const QPoint& at) const;
    int Validate(const QDropEvent& event);
    void ShowDropTarget(bool show);
    void PaintRowMark(QPainter& painter, const QModelIndex& index);
    void PaintDropTarget();

    QStringList columns_;
    TableModel* model_;  // A child of this object.
    DropTarget target_;
    bool showsTarget_ = false;
};

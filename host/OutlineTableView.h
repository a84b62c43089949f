#pragma once

#include "Geometry.h"
#include "View.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct objc_object;
class BMenu;
class BOutlineTableView;

// A cell of a table, which holds a text and draws it. Owned by the table that it is added to. [ui]
class FTableItem {
  public:
    // A table's tool tip shows this text while Text() of an item in column 0 differs from it.
    explicit FTableItem(const std::string& text) : text_(text), fullText_(text) {}
    FTableItem(const FTableItem&) = delete;
    FTableItem& operator=(const FTableItem&) = delete;
    virtual ~FTableItem();

    // Draws the text on one line, 4 points from the left edge of the cell and centred vertically,
    // in the colours of the row. Control characters are drawn as symbols.
    virtual void DrawItem(BOutlineTableView* view, BRect cell);

    const std::string& Text() const { return text_; }
    void SetText(const std::string& text) { text_ = text; }

    // For the framework only: the text that the item was created with.
    const std::string& FullText() const { return fullText_; }

    // The width of this text as DrawItem draws it, in points.
    float MeasureText(std::string_view text) const;

  private:
    friend class BOutlineTableView;

    std::string text_;
    std::string fullText_;
    const BOutlineTableView* table_ = nullptr;  // The owner.
};

// A table with selectable rows. Created from a window's description, which names the columns. Rows
// and columns are counted from 0. [ui]
class BOutlineTableView final : public BView {
  public:
    explicit BOutlineTableView(std::unique_ptr<Native> native);
    ~BOutlineTableView() override;

    // Deletes all rows.
    void Clear();
    int CountRows() const;
    // Puts an item into a cell and deletes the previous one; the row number CountRows() appends a
    // row. The table takes ownership. Appended rows are painted in batches, within about 30 ms; all
    // other operations include them immediately.
    void AddItem(FTableItem* item, int row, int column);
    // The item of a cell; null if there is none.
    FTableItem* ItemAt(int row, int column) const;

    // Selects the row and scrolls it into view; with `extend`, other rows stay selected.
    void Select(int row, bool extend);
    // The items in column 0 of the selected rows, from top to bottom.
    std::vector<FTableItem*> SelectedItems() const;

    // The invoker is called when the user double-clicks a row or presses Return in it. Its
    // arguments are the row's item in column 0, the row and the column.
    void SetInvoker(const std::function<void(FTableItem*, int, int)>& invoker);

    // The handler is called for each key press with the key's bytes: its text in UTF-8 or one of
    // these codes: Home 1, End 4, Backspace 8, Tab 9, Return 10, Page Up 11, Page Down 12,
    // Escape 27, Left 28, Right 29, Up 30, Down 31, Delete 127. It returns true if it has handled
    // the key; otherwise the table handles the key itself.
    void SetKeyDownHandler(
        const std::function<bool(BOutlineTableView*, const char* bytes, int numBytes)>& handler);

    // Sets the context menu. The table takes ownership.
    void SetMenu(BMenu* menu);

    // Drag and drop; see AppKit.h. The arguments are the dragging information object, the proposed
    // row (null for none) and the proposed index (-1 for on the row or on the whole table,
    // otherwise between rows). The validator returns a drag operation and may propose another
    // target with NSOutlineView_setDropItem_dropChildIndex.
    void SetDropValidator(const std::function<int(objc_object*, objc_object*, int)>& validator);
    // The acceptor is called when the user drops, with the target that the validator proposed last.
    // It returns false to refuse the drop.
    void SetAcceptDrop(const std::function<bool(objc_object*, objc_object*, int)>& acceptor);
    // The item in this column of the row that a row object represents; null if there is none.
    FTableItem* ItemForID(objc_object* row, int column) const;

  protected:
    void* KitViewPointer() const override;
};

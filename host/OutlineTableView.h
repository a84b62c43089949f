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

// A cell of a table: it has a text and draws it. Owned by the table that it is added to.
class FTableItem {
  public:
    explicit FTableItem(const std::string& text) : text_(text) {}
    FTableItem(const FTableItem&) = delete;
    FTableItem& operator=(const FTableItem&) = delete;
    virtual ~FTableItem();

    // Draws the text in one line, 4 points from the left edge of the cell and centred in its
    // height, in the colours of the row. Control characters are drawn as their symbols.
    virtual void DrawItem(BOutlineTableView* view, BRect cell);

    const std::string& Text() const { return text_; }
    void SetText(const std::string& text) { text_ = text; }

    // The width that DrawItem takes for this text, in points.
    float MeasureText(std::string_view text) const;

  private:
    friend class BOutlineTableView;

    std::string text_;
    const BOutlineTableView* table_ = nullptr;  // That owns the item.
};

// A table with rows that can be selected, and columns that the window's description names. Made
// from that; used on the user-interface thread. Rows and columns count from 0.
class BOutlineTableView final : public BView {
  public:
    explicit BOutlineTableView(std::unique_ptr<Native> native);
    ~BOutlineTableView() override;

    // Deletes all rows.
    void Clear();
    int CountRows() const;
    // Puts an item, which the table owns from here on, into a cell; the row number CountRows()
    // appends a row. Deletes what was there. Rows appear together with the other changes of their
    // turn of the event loop.
    void AddItem(FTableItem* item, int row, int column);
    // Null when there is none.
    FTableItem* ItemAt(int row, int column) const;

    // Selects the row, in addition to the others with `extend`, and brings it into view.
    void Select(int row, bool extend);
    // The items of the selected rows in column 0, from the top.
    std::vector<FTableItem*> SelectedItems() const;

    // Called when a row is invoked by a double click or the Return key, with its item of column 0,
    // the row and the column.
    void SetInvoker(const std::function<void(FTableItem*, int, int)>& invoker);

    // Called with the bytes of a key that is pressed, UTF-8 or one of the codes below 32. True ends
    // it there, with false the table treats the key as usual. The codes: Home 1, End 4, Backspace
    // 8, Tab 9, Return 10, Page Up 11, Page Down 12, Escape 27, the arrows left 28, right 29, up
    // 30, down 31; Delete is 127.
    void SetKeyDownHandler(
        const std::function<bool(BOutlineTableView*, const char* bytes, int numBytes)>& handler);

    // The context menu, owned by the table from here on.
    void SetMenu(BMenu* menu);

    // Drag and drop, see AppKit.h. The validator gets the drag, the proposed row (null for none)
    // and the proposed index (-1 on the row or on the whole table, else between rows); it returns a
    // drag operation and may propose something else by setDropItem_dropChildIndex.
    void SetDropValidator(const std::function<int(objc_object*, objc_object*, int)>& validator);
    // Called with the same when the drop happens, with what the validator left proposed. False
    // refuses the drop.
    void SetAcceptDrop(const std::function<bool(objc_object*, objc_object*, int)>& acceptor);
    // The item that a row object stands for, in this column; null when there is none.
    FTableItem* ItemForID(objc_object* row, int column) const;

  protected:
    void* KitViewPointer() const override;
};

#include "table_widget.h"

#include "Keyboard.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "runtime.h"
#include "table_native.h"
#include "wait.h"
#include "window_widget.h"

#include <gtest/gtest.h>

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

namespace {

class TableTest : public testing::Test {
  protected:
    TableTest()
    {
        widget->SetColumns({"Name", "Size"});
        window->SetLooper(looper);
        window->show();
    }
    ~TableTest() override { view.reset(); }

    void AddRow(const std::string& name)
    {
        view->AddItem(new FTableItem(name), view->CountRows(), 0);
    }

    Runtime runtime;
    std::shared_ptr<BLooper> looper = std::make_shared<BLooper>();
    std::unique_ptr<WindowWidget> window = std::make_unique<WindowWidget>();
    TableWidget* widget = new TableWidget(window.get());
    std::unique_ptr<BOutlineTableView> view =
        std::make_unique<BOutlineTableView>(std::make_unique<TableNative>(widget));
};

}  // namespace

TEST_F(TableTest, RowsAddedInOneTurnAreInsertedTogether)
{
    QSignalSpy insertions(widget->model(), &QAbstractItemModel::rowsInserted);
    for (int i = 0; i < 1000; ++i) {
        AddRow("name");
    }
    EXPECT_EQ(view->CountRows(), 1000) << "at once";
    ASSERT_TRUE(WaitUntil([&] { return widget->model()->rowCount() == 1000; }));
    EXPECT_EQ(insertions.count(), 1);
    AddRow("last");
    view->Select(1000, false);  // Not yet in the model.
    ASSERT_EQ(view->SelectedItems().size(), 1U);
    EXPECT_EQ(view->SelectedItems()[0]->Text(), "last");
    view->Clear();
    EXPECT_EQ(view->SelectedItems().size(), 0U);
}

TEST_F(TableTest, KeysReachTheHandlerAsBytesWithTheirModifiers)
{
    std::string seen;
    unsigned held = 0;
    bool handles = true;
    view->SetKeyDownHandler([&](BOutlineTableView*, const char* bytes, int count) {
        seen.assign(bytes, static_cast<std::size_t>(count));
        held = modifiers();
        return handles;
    });
    QTest::keyClick(widget, Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(seen, "\x1e");
    EXPECT_EQ(held, kCommandKey | kShiftKey);
    QTest::keyClick(widget, Qt::Key_A);
    EXPECT_EQ(seen, "a");
    EXPECT_EQ(held, 0U);
    AddRow("a");
    AddRow("b");
    view->Select(0, false);
    QTest::keyClick(widget, Qt::Key_Down);
    EXPECT_EQ(view->SelectedItems()[0]->Text(), "a") << "the table received a handled key";
    handles = false;
    QTest::keyClick(widget, Qt::Key_Down);
    EXPECT_EQ(view->SelectedItems()[0]->Text(), "b");
}

TEST_F(TableTest, TheBorderOfAColumnCannotBeMoved)
{
    widget->resize(400, 300);
    auto* const header = widget->header();
    const int name = header->sectionSize(0);
    EXPECT_EQ(header->length(), widget->viewport()->width());
    const QPoint border(name, header->height() / 2);
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, border);
    QTest::mouseMove(header->viewport(), border + QPoint(90, 0));
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, border + QPoint(90, 0));
    EXPECT_EQ(header->sectionSize(0), name) << "after a drag";
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, border);
    EXPECT_EQ(header->sectionSize(0), name) << "after a double click";
}

TEST_F(TableTest, TheMenuKeyAndADropShowTheSelectedRow)
{
    for (int i = 0; i < 200; ++i) {
        AddRow("name");
    }
    view->Select(150, false);
    widget->scrollToTop();
    QPoint at;
    widget->handlers.showMenu = [&](const QPoint& where, MenuOpening) { at = where; };
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(widget, &key);
    const QPoint inside = widget->viewport()->mapFromGlobal(at);
    EXPECT_TRUE(widget->viewport()->rect().contains(inside));

    view->SetDropValidator([](auto*, auto*, int) { return NSDragOperationCopy; });
    const QRect row = widget->visualRect(widget->model()->index(150, 1));
    EXPECT_TRUE(row.top() < inside.y() && inside.y() < row.bottom());
    const auto before = widget->viewport()->grab(row).toImage();
    QMimeData data;
    widget->SetAcceptsFiles(true);
    QDragEnterEvent drag(row.center(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(widget->viewport(), &drag);
    EXPECT_NE(widget->viewport()->grab(row).toImage(), before) << "the mark cannot be seen";
}

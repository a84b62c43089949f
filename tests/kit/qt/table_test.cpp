#include "table_widget.h"

#include "Keyboard.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "runtime.h"
#include "table_native.h"
#include "wait.h"
#include "window_widget.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace {

class TableTest : public testing::Test {
  protected:
    TableTest()
    {
        widget->SetColumns({"Name"});
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

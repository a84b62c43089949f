#include "table_widget.h"

#include "Keyboard.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "runtime.h"
#include "table_native.h"
#include "wait.h"
#include "window_widget.h"

#include <gtest/gtest.h>

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
        window->resize(300, 200);
        widget->resize(300, 200);
        window->show();
    }
    ~TableTest() override { view.reset(); }

    void AddRow(const std::string& name, const std::string& size)
    {
        const int row = view->CountRows();
        view->AddItem(new FTableItem(name), row, 0);
        view->AddItem(new FTableItem(size), row, 1);
    }

    Runtime runtime;
    std::shared_ptr<BLooper> looper = std::make_shared<BLooper>();
    std::unique_ptr<WindowWidget> window = std::make_unique<WindowWidget>();
    TableWidget* widget = new TableWidget(window.get());
    std::unique_ptr<BOutlineTableView> view =
        std::make_unique<BOutlineTableView>(std::make_unique<TableNative>(widget));
};

}  // namespace

TEST_F(TableTest, RowsOfOneTurnAppearTogether)
{
    QSignalSpy insertions(widget->model(), &QAbstractItemModel::rowsInserted);
    for (int i = 0; i < 1000; ++i) {
        AddRow("name", "1");
    }
    EXPECT_EQ(view->CountRows(), 1000) << "at once";
    ASSERT_TRUE(WaitUntil([&] { return widget->model()->rowCount() == 1000; }));
    EXPECT_EQ(insertions.count(), 1);
    AddRow("last", "1");
    view->Select(1000, false);  // Not yet announced.
    ASSERT_EQ(view->SelectedItems().size(), 1U);
    EXPECT_EQ(view->SelectedItems()[0]->Text(), "last");
    view->Clear();
    EXPECT_EQ(view->SelectedItems().size(), 0U);
    view->Select(0, false);
    view->AddItem(new FTableItem("nowhere"), 5, 0);
    EXPECT_EQ(view->CountRows(), 0);
}

TEST_F(TableTest, KeysComeAsBytesWithTheirModifiers)
{
    std::string seen;
    unsigned held = 0;
    bool handles = true;
    view->SetKeyDownHandler([&](BOutlineTableView* of, const char* bytes, int count) {
        EXPECT_EQ(of, view.get());
        seen.assign(bytes, static_cast<std::size_t>(count));
        held = modifiers();
        return handles;
    });
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        std::string bytes;
        unsigned mask;
    } rows[] = {
        {Qt::Key_Backspace, Qt::ControlModifier, "\x08", kCommandKey},
        {Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier, "\x1e", kCommandKey | kShiftKey},
        {Qt::Key_Down, Qt::AltModifier, "\x1f", kOptionKey},
        {Qt::Key_Delete, Qt::MetaModifier, "\x7f", kControlKey},
        {Qt::Key_A, Qt::NoModifier, "a", 0},
    };
    for (const auto& row : rows) {
        seen.clear();
        QTest::keyClick(widget, row.key, row.modifiers);
        EXPECT_EQ(seen, row.bytes) << row.key;
        EXPECT_EQ(held, row.mask) << row.key;
    }
    AddRow("a", "");
    AddRow("b", "");
    view->Select(0, false);
    QTest::keyClick(widget, Qt::Key_Down);
    EXPECT_EQ(view->SelectedItems()[0]->Text(), "a") << "a handled key went on to the table";
    handles = false;
    QTest::keyClick(widget, Qt::Key_Down);
    EXPECT_EQ(view->SelectedItems()[0]->Text(), "b");
}

TEST_F(TableTest, OddTextsAreDrawnInTheirOwnCellOnly)
{
    for (const std::string& text :
         {QString("né€😀").repeated(40).toStdString(), std::string("e\xCC\x81\xCC\x81\xCC\x81"),
          std::string("שלום עולם"), std::string("a\nb\rc\td\x1b[31m\x7f\0", 14),
          std::string("\xff\xfe\x80"), std::string("\u202e right to left"),
          std::string("a\u2028b")}) {
        view->Clear();
        AddRow("x", "");  // The pointer is on it.
        AddRow(text, "");
        ASSERT_TRUE(WaitUntil([&] { return widget->model()->rowCount() == 2; }));
        widget->header()->resizeSection(0, 100);
        const QImage image = widget->viewport()->grab().toImage();
        const QRect row = widget->visualRect(widget->model()->index(1, 0));
        const auto isBlank = [&](const QRect& area) {
            QImage paper = image.copy(area);
            paper.fill(image.pixelColor(area.topLeft()));
            return image.copy(area) == paper;
        };
        EXPECT_FALSE(isBlank(row)) << "nothing is seen of " << text;
        EXPECT_TRUE(isBlank(row.translated(100, 0))) << "in the next cell: " << text;
        EXPECT_TRUE(isBlank(row.translated(0, row.height()))) << "in the next row: " << text;
    }
}

#include "device_window_fixture.h"

#include "busy_widget.h"
#include "line_label.h"
#include "menu_button.h"
#include "runner.h"
#include "table_widget.h"
#include "wait.h"
#include "window_widget.h"

#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

#include <algorithm>
#include <stdexcept>

DeviceWindowTest::~DeviceWindowTest()
{
    Stop();
    QuilpWindow::gWindowRect.reset();
}

void DeviceWindowTest::Open()
{
    QuilpWindow::ShowInstance(&host);
    Settle();
}

void DeviceWindowTest::Settle()
{
    do {
        bool arrived = false;
        // By way of two: what arrives may post what starts the next command.
        runtime.queue().Post([&] { runtime.queue().Post([&] { arrived = true; }); });
        ASSERT_TRUE(WaitUntil([&] { return arrived && runtime.IsIdle(); }));
        arrived = false;
        runtime.queue().Post([&] { runtime.queue().Post([&] { arrived = true; }); });
        ASSERT_TRUE(WaitUntil([&] { return arrived; }));
    } while (!runtime.IsIdle());
}

WindowWidget& DeviceWindowTest::widget()
{
    for (auto* candidate : QApplication::topLevelWidgets()) {
        if (auto* window = dynamic_cast<WindowWidget*>(candidate); window && window->isVisible()) {
            return *window;
        }
    }
    throw std::logic_error("no window is on the screen");
}

TableWidget& DeviceWindowTest::table()
{
    return *widget().findChild<TableWidget*>("listing");
}

MenuButton& DeviceWindowTest::pathButton()
{
    return *dynamic_cast<MenuButton*>(widget().findChild<QAbstractButton*>("path"));
}

bool DeviceWindowTest::IsBusy()
{
    return dynamic_cast<BusyWidget*>(widget().findChild<QWidget*>("busy"))->IsBusy();
}

std::string DeviceWindowTest::DeviceLabel()
{
    return widget().findChild<QLabel*>("device")->text().toStdString();
}

void DeviceWindowTest::PressButton(const char* name)
{
    QTest::mouseClick(widget().findChild<QPushButton*>(name), Qt::LeftButton);
}

DeviceWindowTest::Strings DeviceWindowTest::Rows()
{
    Strings names;
    for (int row = 0; row < table().rows().CountRows(); ++row) {
        const auto* item = dynamic_cast<IconTableItem*>(table().rows().ItemAt(row, 0));
        names.push_back(item->name + (item->isDirectory ? "/" : ""));
    }
    return names;
}

int DeviceWindowTest::RowOf(const std::string& name)
{
    const auto rows = Rows();
    const auto found = std::ranges::find(rows, name);
    EXPECT_NE(found, rows.end()) << name;
    return static_cast<int>(found - rows.begin());
}

void DeviceWindowTest::SelectRows(const Strings& names)
{
    table().clearSelection();
    for (const auto& name : names) {
        table().SelectRow(RowOf(name), true);
    }
}

DeviceWindowTest::Strings DeviceWindowTest::Selection()
{
    Strings names;
    for (const int row : table().SelectedRows()) {
        names.push_back(Rows()[static_cast<std::size_t>(row)]);
    }
    return names;
}

void DeviceWindowTest::DoubleClick(const std::string& name)
{
    table().rows().Publish();
    const auto at = table().visualRect(table().model()->index(RowOf(name), 0)).center();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, at);
}

void DeviceWindowTest::CommandKey(Qt::Key key)
{
    table().setFocus();
    QTest::keyClick(&table(), key, Qt::ControlModifier);
}

DeviceWindowTest::Strings DeviceWindowTest::OpenPathMenu()
{
    QTest::mouseClick(&pathButton(), Qt::LeftButton);
    Strings labels;
    if (const auto* menu = OpenMenu()) {
        for (const auto* action : menu->actions()) {
            labels.push_back(action->text().toStdString());
        }
    }
    return labels;
}

void DeviceWindowTest::ChooseFromMenu(const std::string& label)
{
    auto* const menu = OpenMenu();
    ASSERT_NE(menu, nullptr);
    for (auto* action : menu->actions()) {
        if (action->text().toStdString() == label) {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
            return;
        }
    }
    ADD_FAILURE() << "no item " << label;
}

bool DeviceWindowTest::Drag(QWidget& over, QDropEvent&& event)
{
    event.ignore();  // They come accepted.
    QApplication::sendEvent(&over, &event);
    return event.isAccepted();
}

std::pair<bool, bool> DeviceWindowTest::Drop(const QMimeData& data, const std::string& name,
                                             int offset)
{
    table().rows().Publish();
    QPoint at(5, table().viewport()->height() - 3);
    if (!name.empty()) {
        at = table().visualRect(table().model()->index(RowOf(name), 0)).center();
    }
    at.ry() += offset;
    QWidget& over = *table().viewport();
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    Drag(over, QDragEnterEvent(at, actions, &data, Qt::LeftButton, {}));
    const bool proposed = Drag(over, QDragMoveEvent(at, actions, &data, Qt::LeftButton, {}));
    return {proposed, Drag(over, QDropEvent(at, actions, &data, Qt::LeftButton, {}))};
}

QMenu* OpenMenu()
{
    return dynamic_cast<QMenu*>(QApplication::activePopupWidget());
}

#include "device_window_fixture.h"

#include "busy_widget.h"
#include "line_label.h"
#include "menu_button.h"
#include "menus.h"
#include "runner.h"
#include "table_widget.h"
#include "window_widget.h"

#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr auto kDragActions = Qt::CopyAction | Qt::MoveAction;

bool SendDrag(QWidget& over, QDropEvent&& event)
{
    event.ignore();  // They come accepted.
    QApplication::sendEvent(&over, &event);
    return event.isAccepted();
}

}  // namespace

DraggedFile::DraggedFile(const std::string& name, const std::string& content)
    : path(folder.Write(name, content))
{
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
}

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
    bool arrived = false;
    runtime.queue().Post([&] { arrived = true; });
    ASSERT_TRUE(WaitUntil([&] { return arrived && runtime.IsIdle(); }));
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
        names.push_back(Entry(row).name + (Entry(row).isDirectory ? "/" : ""));
    }
    return names;
}

const IconTableItem& DeviceWindowTest::Entry(int row)
{
    return dynamic_cast<const IconTableItem&>(*table().rows().ItemAt(row, 0));
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
    return OpenMenu() != nullptr ? LabelsOf(*OpenMenu()) : Strings{};
}

bool DeviceWindowTest::DragOver(const QMimeData& data, const std::string& name, int offset)
{
    table().rows().Publish();
    dragOver_ = table().viewport();
    dragAt_ = QPoint(5, dragOver_->height() - 3);
    if (!name.empty()) {
        dragAt_ = table().visualRect(table().model()->index(RowOf(name), 0)).center();
    }
    dragAt_.ry() += offset;
    SendDrag(*dragOver_, QDragEnterEvent(dragAt_, kDragActions, &data, Qt::LeftButton, {}));
    return MoveDrag(data);
}

bool DeviceWindowTest::MoveDrag(const QMimeData& data)
{
    return SendDrag(*dragOver_, QDragMoveEvent(dragAt_, kDragActions, &data, Qt::LeftButton, {}));
}

bool DeviceWindowTest::Drop(const QMimeData& data)
{
    return SendDrag(*dragOver_, QDropEvent(dragAt_, kDragActions, &data, Qt::LeftButton, {}));
}

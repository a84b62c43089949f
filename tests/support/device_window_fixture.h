#pragma once

#include "busy_widget.h"
#include "line_label.h"
#include "menu_button.h"
#include "menus.h"
#include "quilp_window.h"
#include "recording_host.h"
#include "runner.h"
#include "runtime.h"
#include "table_widget.h"
#include "wait.h"
#include "window_widget.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

struct DraggedFile {
    explicit DraggedFile(const std::string& name = "a.py", const std::string& content = "")
        : path(folder.Write(name, content))
    {
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    }

    TemporaryFolder folder;
    std::string path;
    QMimeData data;
};

// The Device window on the screen, with a host that records.
class DeviceWindowTest : public testing::Test {
  protected:
    using Strings = std::vector<std::string>;

    ~DeviceWindowTest() override
    {
        Stop();
        runtime.ShutDown();
        EXPECT_EQ(QuilpWindow::gInstance, nullptr);
        QuilpWindow::gWindowRect.reset();
    }

    void Open()
    {
        QuilpWindow::ShowInstance(&host);
        Settle();
    }
    // Waits until no command runs and everything that was posted has been delivered.
    void Settle()
    {
        bool delivered = false;
        runtime.queue().Post([&] { delivered = true; });
        ASSERT_TRUE(WaitUntil([&] { return delivered && runtime.IsIdle(); }));
    }

    QWidget& widget()
    {
        for (auto* candidate : QApplication::topLevelWidgets()) {
            if (candidate->isVisible() && dynamic_cast<WindowWidget*>(candidate) != nullptr) {
                return *candidate;
            }
        }
        throw std::logic_error("no window is open");
    }
    template <class Part>
    Part& Find(const char* name)
    {
        return dynamic_cast<Part&>(*widget().findChild<QWidget*>(name));
    }
    TableWidget& table() { return Find<TableWidget>("listing"); }
    MenuButton& pathButton() { return Find<MenuButton>("path"); }
    bool IsBusy() { return Find<BusyWidget>("busy").IsBusy(); }
    std::string DeviceLabel() { return Find<QLabel>("device").text().toStdString(); }
    void PressButton(const char* name)
    {
        QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton);
    }
    // Opens the path menu and returns its labels.
    Strings OpenPathMenu()
    {
        QTest::mouseClick(&pathButton(), Qt::LeftButton);
        return OpenMenu() != nullptr ? LabelsOf(*OpenMenu()) : Strings{};
    }

    const IconTableItem& Entry(int row)
    {
        return dynamic_cast<const IconTableItem&>(*table().rows().ItemAt(row, 0));
    }
    // The rows' names; those of directories end in "/".
    Strings Rows()
    {
        Strings names;
        for (int row = 0; row < table().rows().CountRows(); ++row) {
            names.push_back(Entry(row).name + (Entry(row).isDirectory ? "/" : ""));
        }
        return names;
    }
    int RowOf(const std::string& name)
    {
        const auto rows = Rows();
        EXPECT_TRUE(std::ranges::count(rows, name)) << name;
        return static_cast<int>(std::ranges::find(rows, name) - rows.begin());
    }
    QPoint CenterOf(const std::string& name)
    {
        table().rows().Publish();
        return table().visualRect(table().model()->index(RowOf(name), 0)).center();
    }
    void SelectRows(const Strings& names)
    {
        table().clearSelection();
        for (const auto& name : names) {
            table().SelectRow(RowOf(name), true);
        }
    }
    Strings Selection()
    {
        Strings names;
        for (const int row : table().SelectedRows()) {
            names.push_back(Rows().at(static_cast<std::size_t>(row)));
        }
        return names;
    }
    void DoubleClick(const std::string& name)
    {
        const QPoint at = CenterOf(name);
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, at);
        Settle();
    }
    void CommandKey(Qt::Key key)
    {
        table().setFocus();
        QTest::keyClick(&table(), key, Qt::ControlModifier);
    }

    // Drags over the centre of a row or `offset` below it; below all rows for an empty name. Each
    // of these functions returns whether the event was accepted.
    bool DragOver(const QMimeData& data, const std::string& name, int offset = 0)
    {
        dragOver_ = table().viewport();
        dragAt_ = name.empty() ? QPoint(5, dragOver_->height() - 3) : CenterOf(name);
        dragAt_.ry() += offset;
        SendDrag<QDragEnterEvent>(data);
        return MoveDrag(data);
    }
    bool MoveDrag(const QMimeData& data) { return SendDrag<QDragMoveEvent>(data); }
    bool Drop(const QMimeData& data) { return SendDrag<QDropEvent>(data); }

    Runtime runtime;
    RecordingHost host;

  private:
    template <class Event>
    bool SendDrag(const QMimeData& data)
    {
        Event event(dragAt_, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        event.ignore();
        QApplication::sendEvent(dragOver_, &event);
        return event.isAccepted();
    }

    QPointer<QWidget> dragOver_;
    QPoint dragAt_;
};

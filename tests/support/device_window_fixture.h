#pragma once

#include "quilp_window.h"
#include "recording_host.h"
#include "runtime.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <QMimeData>
#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <string>
#include <vector>

class MenuButton;
class TableWidget;
class WindowWidget;

// A local file that is dragged.
struct DraggedFile {
    explicit DraggedFile(const std::string& name = "a.py", const std::string& content = "");

    TemporaryFolder folder;
    std::string path;
    QMimeData data;
};

// The Device window on the screen, with the host that records.
class DeviceWindowTest : public testing::Test {
  protected:
    ~DeviceWindowTest() override;

    using Strings = std::vector<std::string>;

    // Opens the window and waits until its first listing has ended.
    void Open();
    // Until no command runs and everything that was posted has arrived.
    void Settle();

    // Of the window that is on the screen; each fails the test when there is none.
    WindowWidget& widget();
    TableWidget& table();
    MenuButton& pathButton();
    bool IsBusy();
    std::string DeviceLabel();
    void PressButton(const char* name);
    // The names of the rows, a directory's with "/" behind it.
    Strings Rows();
    const IconTableItem& Entry(int row);
    int RowOf(const std::string& name);
    void SelectRows(const Strings& names);
    Strings Selection();
    void DoubleClick(const std::string& name);
    // With Control held.
    void CommandKey(Qt::Key key);
    // Opens the path pop-up; its items' labels.
    Strings OpenPathMenu();

    // Drags over the middle of a row (below the rows for an empty name) or somewhat lower, moves
    // the drag there once more, and drops there. Each reports whether that was accepted.
    bool DragOver(const QMimeData& data, const std::string& name, int offset = 0);
    bool MoveDrag(const QMimeData& data);
    bool Drop(const QMimeData& data);

    Runtime runtime;
    RecordingHost host;

  private:
    QPointer<QWidget> dragOver_;
    QPoint dragAt_;
};

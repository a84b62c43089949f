#pragma once

#include "quilp_window.h"
#include "recording_host.h"

#include <gtest/gtest.h>

#include <QtCore/qnamespace.h>

#include <string>
#include <utility>
#include <vector>

class BusyWidget;
class MenuButton;
class QMenu;
class QDropEvent;
class QMimeData;
class QWidget;
class TableWidget;
class WindowWidget;

// The Device window on the screen, with the host that records and its scripted tool.
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
    int RowOf(const std::string& name);
    void SelectRows(const Strings& names);
    Strings Selection();
    void DoubleClick(const std::string& name);
    // With Control held.
    void CommandKey(Qt::Key key);
    // Opens the path pop-up; its items' labels.
    Strings OpenPathMenu();
    void ChooseFromMenu(const std::string& label);

    // Tells whether the event of a drag was accepted.
    static bool Drag(QWidget& over, QDropEvent&& event);
    // Drags over the middle of a row (below the rows for an empty name) and, when that is accepted,
    // drops there. Tells both.
    std::pair<bool, bool> Drop(const QMimeData& data, const std::string& name, int offset = 0);

    Runtime runtime;
    RecordingHost host{runtime};
};

// The menu that is open; null for none.
QMenu* OpenMenu();

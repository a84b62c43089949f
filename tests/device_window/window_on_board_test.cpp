// The Device window with the real tool and a virtual board.

#include "board_process.h"
#include "device_window_fixture.h"
#include "window_widget.h"

#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace {

class DeviceWindowOnBoard : public DeviceWindowTest {
  protected:
    DeviceWindowOnBoard()
    {
        host.UseRealTool();
        setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1);
    }
    ~DeviceWindowOnBoard() override
    {
        runtime.ShutDown();
        unsetenv("QUILP_VIRTUAL_BOARD");
    }

    Strings SortedRows()
    {
        auto rows = Rows();
        std::ranges::sort(rows);
        return rows;
    }

    BoardProcess board{
        {{"main.py", "print(1)\n"}, {"lib/deep/a.py", "1"}, {"odd é  name.txt", ""}}};
};

}  // namespace

TEST_F(DeviceWindowOnBoard, BrowsesUploadsAndDeletes)
{
    Open();
    EXPECT_EQ(SortedRows(), (Strings{"lib/", "main.py", "odd é  name.txt"}));
    EXPECT_EQ(DeviceLabel(), "MicroPython Virtual board " + board.devicePath());

    const TemporaryFolder local;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(local.Write("new file.py", "n")))});
    EXPECT_EQ(Drop(data, "lib/"), std::pair(true, true));
    Settle();
    DoubleClick("lib/");
    Settle();
    EXPECT_EQ(SortedRows(), (Strings{"deep/", "new file.py"}));
    EXPECT_EQ(ReadFile(board.files() / "lib/new file.py"), "n");
    DoubleClick("deep/");
    Settle();
    EXPECT_EQ(Rows(), Strings{"a.py"});
    EXPECT_EQ(OpenPathMenu(), (Strings{"deep", "lib", board.devicePath()}));
    ChooseFromMenu("lib");
    Settle();
    EXPECT_EQ(SortedRows(), (Strings{"deep/", "new file.py"})) << "by //lib";

    SelectRows({"deep/", "new file.py"});
    CommandKey(Qt::Key_Backspace);
    Settle();
    EXPECT_EQ(Rows(), Strings{});
    CommandKey(Qt::Key_Up);
    Settle();
    EXPECT_EQ(Selection(), Strings{"lib/"});
}

TEST_F(DeviceWindowOnBoard, ComesBackAfterTheBoardWasUnplugged)
{
    const TemporaryFolder local;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(
        QString::fromStdString(local.Write("big.bin", std::string(300'000, 'b'))))});
    struct Row {
        const char* name;
        std::function<void()> act;
    };
    const Row rows[] = {
        {"while listing", [&] { PressButton("refresh"); }},
        {"while deleting",
         [&] {
             SelectRows({"lib/", "main.py"});
             CommandKey(Qt::Key_Backspace);
         }},
        {"while uploading", [&] { Drop(data, ""); }},
    };
    for (const auto& row : rows) {
        Open();
        row.act();
        ASSERT_TRUE(WaitUntil([&] { return !runtime.IsIdle(); })) << row.name;
        board.Unplug();
        Settle();
        PressButton("refresh");
        Settle();
        EXPECT_EQ(Rows(), Strings{}) << row.name;
        board.Plug();
        PressButton("refresh");
        Settle();
        EXPECT_TRUE(std::ranges::count(Rows(), "odd é  name.txt")) << row.name;
        EXPECT_FALSE(IsBusy()) << row.name;
        widget().close();
    }
}

// The Device window with the real tool and a virtual board.

#include "board_process.h"
#include "device_window_fixture.h"
#include "menus.h"
#include "window_widget.h"

#include <QUrl>

#include <algorithm>
#include <filesystem>

namespace {

class DeviceWindowOnBoard : public DeviceWindowTest {
  protected:
    DeviceWindowOnBoard() { setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1); }
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

    DraggedFile file("sub/naïve name.bin", EveryByte());
    file.folder.Write("sub/empty", "");
    QMimeData folder;
    folder.setUrls({QUrl::fromLocalFile(QString::fromStdString(file.folder / "sub"))});
    for (const auto* data : {&file.data, &folder}) {
        EXPECT_TRUE(DragOver(*data, "lib/"));
        EXPECT_TRUE(Drop(*data));
        Settle();
    }
    DoubleClick("lib/");
    Settle();
    EXPECT_EQ(SortedRows(), (Strings{"deep/", "naïve name.bin", "sub/"}));
    EXPECT_EQ(ReadFile(board.files() / "lib/naïve name.bin"), EveryByte());
    EXPECT_EQ(ReadFile(board.files() / "lib/sub/naïve name.bin"), EveryByte());
    EXPECT_TRUE(std::filesystem::exists(board.files() / "lib/sub/empty"));
    DoubleClick("deep/");
    Settle();
    EXPECT_EQ(Rows(), Strings{"a.py"});
    EXPECT_EQ(OpenPathMenu(), (Strings{"deep", "lib", board.devicePath()}));
    ClickItem(*OpenMenu(), "lib");
    Settle();
    EXPECT_EQ(Rows().size(), 3U) << "by //lib";

    std::filesystem::remove(board.files() / "lib/naïve name.bin");
    SelectRows(Rows());
    CommandKey(Qt::Key_Backspace);
    Settle();
    EXPECT_EQ(Rows(), Strings{}) << "the deletion that fails does not end the others";
    EXPECT_NE(host.worksheet.find("rm :/"), std::string::npos) << host.worksheet;
    CommandKey(Qt::Key_Up);
    Settle();
    EXPECT_EQ(Selection(), Strings{"lib/"});
}

TEST_F(DeviceWindowOnBoard, ComesBackAfterTheBoardWasUnplugged)
{
    const DraggedFile big("big.bin", std::string(300'000, 'b'));
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
        {"while uploading",
         [&] {
             DragOver(big.data, "");
             Drop(big.data);
         }},
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

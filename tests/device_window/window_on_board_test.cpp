// The Device window with the real tool and a virtual board.

#include "board_process.h"
#include "device_window_fixture.h"

namespace {

class DeviceWindowOnBoard : public DeviceWindowTest {
  protected:
    DeviceWindowOnBoard() { setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1); }

    bool HasRows(const Strings& names) { return std::ranges::is_permutation(Rows(), names); }

    BoardProcess board{
        {{"main.py", "print(1)\n"}, {"lib/deep/a.py", "1"}, {"odd é  name.txt", ""}}};
};

}  // namespace

TEST_F(DeviceWindowOnBoard, BrowsesUploadsAndDeletes)
{
    Open();
    EXPECT_TRUE(HasRows({"lib/", "main.py", "odd é  name.txt"}));
    EXPECT_EQ(DeviceLabel(), "MicroPython Virtual board " + board.devicePath());

    DraggedFile file("sub/naïve name.bin", EveryByte());
    QMimeData folder;
    folder.setUrls({QUrl::fromLocalFile(QString::fromStdString(file.folder / "sub"))});
    for (const auto* data : {&file.data, &folder}) {
        EXPECT_TRUE(DragOver(*data, "lib/"));
        EXPECT_TRUE(Drop(*data));
        Settle();
    }
    DoubleClick("lib/");
    EXPECT_TRUE(HasRows({"deep/", "naïve name.bin", "sub/"}));
    EXPECT_EQ(ReadFile(board.files() / "lib/naïve name.bin"), EveryByte());
    EXPECT_EQ(ReadFile(board.files() / "lib/sub/naïve name.bin"), EveryByte());
    DoubleClick("deep/");
    EXPECT_EQ(Rows(), Strings{"a.py"});
    EXPECT_EQ(OpenPathMenu(), (Strings{"deep", "lib", board.devicePath()}));
    ChooseItem(*OpenMenu(), "lib");
    Settle();
    EXPECT_EQ(Rows().size(), 3U) << "listed as //lib";

    std::filesystem::remove(board.files() / "lib/naïve name.bin");
    SelectRows(Rows());
    CommandKey(Qt::Key_Backspace);
    Settle();
    EXPECT_EQ(Rows(), Strings{}) << "a deletion that fails does not stop the others";
    EXPECT_NE(host.worksheet.find("rm :/"), std::string::npos) << host.worksheet;
    CommandKey(Qt::Key_Up);
    Settle();
    EXPECT_EQ(Selection(), Strings{"lib/"});
}

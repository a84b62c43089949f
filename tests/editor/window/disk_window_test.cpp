// The editor on disks that are slow, hang or cannot be written.

#include "editor_window_fixture.h"

#include "text_editor.h"

#include <QMessageBox>
#include <QPushButton>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

// This program's own versions of two system calls simulate a disk.
namespace {

namespace fs = std::filesystem;

std::atomic<bool> diskIsStuck = false;  // That of the folder "slow".
std::function<void()> afterRename;      // Called in another thread.

void AccessDisk(const std::string& path)
{
    static const auto uiThread = std::this_thread::get_id();
    if (path.find("/slow/") == path.npos) {
        return;
    }
    if (diskIsStuck && std::this_thread::get_id() == uiThread) {
        ADD_FAILURE() << "the window would freeze";
        return;
    }
    while (diskIsStuck) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

extern "C" int fsync(int fd)
{
    std::error_code error;
    const auto path = fs::read_symlink("/proc/self/fd/" + std::to_string(fd), error);
    AccessDisk(path);
    if (afterRename && fs::is_directory(path, error)) {
        std::exchange(afterRename, {})();
    }
    return 0;  // A loaded disk must not slow the test down.
}

extern "C" int stat(const char* path, struct stat* status)
{
    AccessDisk(path);
    return fstatat(AT_FDCWD, path, status, 0);
}

TEST_F(EditorWindow, ADiskThatDoesNotAnswerHoldsUpNothingElse)
{
    const QString slow = Write("slow/a.py", "old");
    const QString other = Write("slow/c.py", "old");
    Start({Write("b.py", "old"), slow});
    diskIsStuck = true;
    Type("1");
    Press(Qt::Key_S, Qt::ControlModifier);
    auto& documents = window().documents();
    EXPECT_EQ(documents.tabText(1), "a.py – saving…");
    Type("2");
    Press(Qt::Key_F5);
    EXPECT_TRUE(MessageShows("still being saved"));
    window().OpenFiles({other});
    EXPECT_TRUE(MessageShows("c.py was not opened"));
    documents.setCurrentIndex(0);
    Write("b.py", "another program's");
    EXPECT_TRUE(WaitUntil([&] { return editor().Content() == "another program's"; }));
    Type("my and ");
    EXPECT_TRUE(documents.saver().SaveFront());
    EXPECT_EQ(Read("b.py"), "my and another program's");
    diskIsStuck = false;
    EXPECT_TRUE(WaitUntil([&] { return Read("slow/a.py") == "12old"; })) << Read("slow/a.py");
    EXPECT_TRUE(WaitUntil([&] { return documents.tabText(1) == "a.py"; }));
}

TEST_F(EditorWindow, AFormatterThatRewritesTheFileAtOnceIsNoticed)
{
    Start({Write("a.py", "x=1")});
    afterRename = [this] { Write("a.py", "y = 1\n"); };
    Type("y");
    Press(Qt::Key_Delete);
    EXPECT_TRUE(window().documents().saver().SaveFront());
    EXPECT_TRUE(WaitUntil([&] { return editor().Content() == "y = 1\n"; }));
}

#ifdef __linux__
TEST_F(EditorWindow, AFileThatCannotBeReplacedIsWrittenInPlaceIfTheUserAgrees)
{
    const QString file = Write("mounted", "a longer old text");
    const std::string path = file.toStdString();
    if (unshare(CLONE_NEWNS) != 0 || mount("", "/", "", MS_REC | MS_PRIVATE, "") != 0 ||
        mount(path.c_str(), path.c_str(), "", MS_BIND, "") != 0) {
        GTEST_SKIP() << "this user may not mount files here";
    }
    Start({file});
    editor().selectAll();
    Type("new");
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(window().documents().saver().SaveFront());
    EXPECT_EQ(Read("mounted"), "a longer old text");
    WhenAsked([&](QWidget& dialog) {
        for (auto* const button : dialog.findChildren<QPushButton*>()) {
            if (button->text().contains("in Place")) {
                button->click();
            }
        }
    });
    EXPECT_TRUE(window().documents().saver().SaveFront());
    Type("er");
    EXPECT_TRUE(window().documents().saver().SaveFront()) << "the user is asked again";
    EXPECT_EQ(Read("mounted"), "newer");
    umount2(path.c_str(), MNT_DETACH);
}
#endif

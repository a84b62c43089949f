// The Device window with a scripted tool.

#include "quilp_window.h"

#include "commands.h"
#include "device_window_fixture.h"
#include "menu_button.h"
#include "runner.h"
#include "table_widget.h"
#include "window_widget.h"

#include <QApplication>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTest>
#include <QThread>
#include <QUrl>

#include <functional>

namespace {

const char* const kBoardLine = "/dev/ttyACM0 e6614103e7 2e8a:0005 MicroPython Board in FS mode\n";

class ScriptedDeviceWindow : public DeviceWindowTest {
  protected:
    ScriptedDeviceWindow()
    {
        host.ToolSays("ls",
                      "ls :\n         139 boot.py\n           0 lib/\n           0 data.d/\n"
                      "      no row\n     1234567 main.py\n");
        host.ToolSays("devs", kBoardLine);
    }
    ~ScriptedDeviceWindow() override { runtime.ShutDown(); }

    // The tool's calls since the last time.
    Strings NewCalls()
    {
        const auto calls = host.ToolCalls();
        const Strings fresh(calls.begin() + seenCalls_, calls.end());
        seenCalls_ = std::ssize(calls);
        return fresh;
    }
    void OpenAndForgetCalls()
    {
        Open();
        NewCalls();
    }
    QMenu* OpenContextMenu()
    {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5), QPoint(5, 5));
        QApplication::sendEvent(table().viewport(), &event);
        return OpenMenu();
    }
    bool CallsAre(std::ptrdiff_t count)
    {
        return WaitUntil([&] { return std::ssize(host.ToolCalls()) == count; });
    }

  private:
    std::ptrdiff_t seenCalls_ = 0;
};

QMimeData* FileUrls(QMimeData& data, const QList<QUrl>& urls)
{
    data.setUrls(urls);
    return &data;
}

}  // namespace

TEST_F(ScriptedDeviceWindow, ListsTheRootAndNamesTheBoardWhenItOpens)
{
    Open();
    EXPECT_EQ(NewCalls(), (Strings{"ls /", "devs"}));
    EXPECT_EQ(Rows(), (Strings{"boot.py", "lib/", "data.d/", "main.py"}));
    const auto* lib = dynamic_cast<IconTableItem*>(table().rows().ItemAt(1, 0));
    EXPECT_EQ(lib->path, "/lib");
    Strings sizes;
    for (int row = 0; row < 4; ++row) {
        sizes.push_back(dynamic_cast<SizeTableItem*>(table().rows().ItemAt(row, 1))->sizeText);
    }
    EXPECT_EQ(sizes, (Strings{"139", "--", "--", "1234567"}));
    EXPECT_EQ(DeviceLabel(), "MicroPython Board in FS mode /dev/ttyACM0");
    EXPECT_EQ(pathButton().text(), "/dev/ttyACM0");
    EXPECT_FALSE(IsBusy());
}

TEST_F(ScriptedDeviceWindow, TheLastLineOfTheDeviceQueryDecides)
{
    Open();
    host.ToolSays("devs",
                  std::string(kBoardLine) + "/dev/ttyS0 NOT-HEX 0000:0000 no MicroPython\n");
    PressButton("refresh");
    Settle();
    EXPECT_EQ(DeviceLabel(), "--");
    EXPECT_EQ(pathButton().text(), "Not Connected");

    // Without a line nothing is known: all stays, and the indicator turns until a line comes.
    host.ToolSays("devs", "");
    host.ToolSays("ls", "");
    PressButton("refresh");
    Settle();
    EXPECT_EQ(Rows(), Strings{});
    EXPECT_EQ(DeviceLabel(), "--");
    EXPECT_TRUE(IsBusy());
}

TEST_F(ScriptedDeviceWindow, IsOneWindowWhichOpeningAgainDoesNotMove)
{
    Open();
    auto* const first = QuilpWindow::gInstance;
    first->SetFrame({50, 60, 450, 560});
    EXPECT_EQ(QuilpWindow::ShowInstance(&host), first);
    EXPECT_EQ(first->Frame(), (BRect{50, 60, 450, 560}));
}

TEST_F(ScriptedDeviceWindow, TheFrameOfTheLastCloseRequestComesBack)
{
    QuilpWindow::SaveSettings(&host);
    EXPECT_EQ(host.log, Strings{}) << "there is nothing to save";
    Open();
    QuilpWindow::gInstance->SetFrame({50, 60, 450, 560});
    PressButton("close");
    Settle();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    QuilpWindow::SaveSettings(&host);
    EXPECT_EQ(host.log, Strings{}) << "its own button does not remember";

    Open();
    QuilpWindow::gInstance->SetFrame({51, 61, 451, 561});
    widget().close();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    QuilpWindow::SaveSettings(&host);
    EXPECT_EQ(host.log, Strings{"settings QuilpWindowFrame -frame 51,61,451,561\n"});
    EXPECT_EQ(QuilpWindow::ShowInstance(&host)->Frame(), (BRect{51, 61, 451, 561}));
}

TEST_F(ScriptedDeviceWindow, SavedFramesAreReadAndFittedToAScreenThatIsThere)
{
    const auto read = [&](std::vector<const char*> words) {
        words.push_back(nullptr);
        QuilpWindow::ReadSettings(&host, words.data());
    };
    QuilpWindow::ReadSettings(&host, nullptr);
    read({});
    read({"QuilpWindowFrame"});
    EXPECT_FALSE(QuilpWindow::gWindowRect);
    read({"QuilpWindowFrame", "-frame", "90000,-7000,90400,-6500"});
    read({"QuilpWindowFrame", "-frame", "1,2,3"});
    read({"QuilpWindowFrame", "-frame", "0,0,1e300,1e300"});
    read({"QuilpWindowFrame", "-frame", "9,9,3,3"});
    ASSERT_TRUE(QuilpWindow::gWindowRect);

    const auto frame = QuilpWindow::ShowInstance(&host)->Frame();
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(frame.right, screen.x() + screen.width() - 10);
    EXPECT_EQ(frame.top, screen.y() + 10);
    EXPECT_EQ(frame.Width(), 400);
}

TEST_F(ScriptedDeviceWindow, DirectoriesAreEnteredAndLeft)
{
    OpenAndForgetCalls();
    struct Row {
        const char* name;
        std::function<void()> act;
        Strings calls;
        Strings selection;
    };
    const Row rows[] = {
        {"double click on a file", [&] { DoubleClick("main.py"); }, {}, {"main.py"}},
        {"Command-Down on a file", [&] { CommandKey(Qt::Key_Down); }, {}, {"main.py"}},
        {"Command-Up at the root", [&] { CommandKey(Qt::Key_Up); }, {}, {"main.py"}},
        {"double click", [&] { DoubleClick("lib/"); }, {"ls /lib", "devs"}, {}},
        {"Command-Down with nothing selected", [&] { CommandKey(Qt::Key_Down); }, {}, {}},
        {"Command-Down opens the first",
         [&] {
             SelectRows({"data.d/", "lib/"});
             CommandKey(Qt::Key_Down);
         },
         {"ls /lib/lib", "devs"},
         {}},
        {"Command-Up", [&] { CommandKey(Qt::Key_Up); }, {"ls /lib", "devs"}, {"lib/"}},
        {"Command-Up to the root", [&] { CommandKey(Qt::Key_Up); }, {"ls /", "devs"}, {"lib/"}},
        {"Return", [&] { QTest::keyClick(&table(), Qt::Key_Return); }, {"ls /lib", "devs"}, {}},
    };
    for (const auto& row : rows) {
        row.act();
        Settle();
        EXPECT_EQ(NewCalls(), row.calls) << row.name;
        EXPECT_EQ(Selection(), row.selection) << row.name;
    }
}

TEST_F(ScriptedDeviceWindow, ThePathMenuLeadsToEveryDirectoryAbove)
{
    Open();
    DoubleClick("lib/");
    Settle();
    DoubleClick("data.d/");
    Settle();
    NewCalls();
    struct Row {
        const char* chosen;
        Strings offered;
        Strings calls;
        const char* shown;
    };
    const Row rows[] = {
        {"data.d", {"data.d", "lib", "/dev/ttyACM0"}, {"ls //lib/data.d", "devs"}, "data.d"},
        {"lib", {"data.d", "lib", "/dev/ttyACM0"}, {"ls //lib", "devs"}, "lib"},
        {"/dev/ttyACM0", {"lib", "/dev/ttyACM0"}, {"ls /", "devs"}, "/dev/ttyACM0"},
        {"/dev/ttyACM0", {"/dev/ttyACM0"}, {}, "/dev/ttyACM0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(OpenPathMenu(), row.offered);
        ChooseFromMenu(row.chosen);
        Settle();
        EXPECT_EQ(NewCalls(), row.calls) << row.chosen;
        EXPECT_EQ(pathButton().text(), row.shown);
    }
}

TEST_F(ScriptedDeviceWindow, DeletesTheSelectionFromItsEndAndListsAgain)
{
    OpenAndForgetCalls();
    // The window's own shortcuts must not take the chord away.
    int taken = 0;
    QShortcut rival(QKeySequence(Qt::CTRL | Qt::Key_Backspace), &widget());
    QObject::connect(&rival, &QShortcut::activated, [&] { ++taken; });
    widget().activateWindow();

    CommandKey(Qt::Key_Backspace);
    SelectRows({"main.py", "boot.py", "lib/"});
    QTest::keyClick(&table(), Qt::Key_Backspace);
    Settle();
    EXPECT_EQ(NewCalls(), Strings{}) << "nothing selected, or no Command";

    CommandKey(Qt::Key_Backspace);
    EXPECT_TRUE(IsBusy());
    Settle();
    EXPECT_EQ(NewCalls(),
              (Strings{"rm -r :/main.py", "rm -r :/lib", "rm -r :/boot.py", "ls /", "devs"}));
    EXPECT_EQ(Selection(), Strings{});
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(taken, 0);
}

TEST_F(ScriptedDeviceWindow, TheContextMenuOffersToDeleteWhatIsSelected)
{
    OpenAndForgetCalls();
    EXPECT_EQ(OpenContextMenu(), nullptr) << "empty";
    SelectRows({"lib/"});
    auto* const menu = OpenContextMenu();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 1);
    ChooseFromMenu("Delete");
    Settle();
    EXPECT_EQ(NewCalls(), (Strings{"rm -r :/lib", "ls /", "devs"}));
}

TEST_F(ScriptedDeviceWindow, DroppedFilesGoWhereTheyWereDropped)
{
    Open();
    DoubleClick("lib/");
    Settle();
    NewCalls();
    const TemporaryFolder local;
    const auto file = local.Write("a.py", "");
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(file));
    const QUrl folder = QUrl::fromLocalFile(QString::fromStdString(local.path() + "/"));
    struct Row {
        const char* name;
        QList<QUrl> urls;
        const char* onto;
        int offset;
        std::string call;  // empty: refused
    };
    const Row rows[] = {
        {"on a directory", {url, folder}, "data.d/", 0, "cp " + file + " :/lib/data.d"},
        {"on a file", {url, folder}, "main.py", 0, "cp " + file + " :/lib"},
        {"between rows", {url}, "data.d/", 10, "cp " + file + " :/lib"},
        {"below the rows", {url}, "", 0, "cp " + file + " :/lib"},
        {"a folder", {folder}, "data.d/", 0, "cp -r " + local.path() + " :/lib/data.d"},
        {"no file", {}, "data.d/", 0, ""},
        {"a file of the net", {QUrl("https://localhost/a.py")}, "data.d/", 0, ""},
    };
    for (const auto& row : rows) {
        QMimeData data;
        data.setText("text");
        const auto result =
            Drop(row.urls.empty() ? data : *FileUrls(data, row.urls), row.onto, row.offset);
        EXPECT_EQ(result, std::pair(!row.call.empty(), !row.call.empty())) << row.name;
        Settle();
        EXPECT_EQ(NewCalls(), row.call.empty() ? Strings{} : (Strings{row.call, "ls /lib", "devs"}))
            << row.name;
    }
}

TEST_F(ScriptedDeviceWindow, ADropAfterTheRowsHaveGoneFindsNoRow)
{
    Open();
    const TemporaryFolder local;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(local.Write("a.py", "")))});
    const QPoint at = table().visualRect(table().model()->index(RowOf("lib/"), 0)).center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(table().viewport(), &enter);
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(table().viewport(), &move);
    NewCalls();
    host.ToolHangs("ls");
    PressButton("refresh");
    ASSERT_TRUE(WaitUntil([&] { return Rows().empty(); }));
    host.ToolHangs("ls", false);
    table().viewport()->grab();  // Paints where the drag was.
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(table().viewport(), &drop);
    Settle();
    EXPECT_TRUE(std::ranges::count(NewCalls(), "cp " + (local / "a.py") + " :/"));
}

// Each closes the window at another moment; then it is opened again, at once.
TEST_F(ScriptedDeviceWindow, MayBeClosedAtAnyMoment)
{
    const TemporaryFolder local;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(local.Write("a.py", "")))});
    struct Row {
        const char* name;
        const char* hanging;  // the tool's command that is under way meanwhile
        std::function<void()> before;
    };
    const Row rows[] = {
        {"at once", "", [] {}},
        {"while it lists", "ls", [&] { PressButton("refresh"); }},
        {"while it asks for the board", "devs", [&] { PressButton("refresh"); }},
        {"in the middle of a deletion", "rm",
         [&] {
             SelectRows({"boot.py", "main.py", "lib/"});
             CommandKey(Qt::Key_Backspace);
         }},
        {"while it uploads", "cp", [&] { Drop(data, "lib/"); }},
        {"with the path menu open", "", [&] { OpenPathMenu(); }},
    };
    const std::function<void()> closings[] = {
        [&] { widget().close(); },
        [&] { PressButton("close"); },
        [&] { QuilpWindow::gInstance->Quit(); },
        [&] { QTest::keyClick(&table(), Qt::Key_W, Qt::ControlModifier); },
    };
    for (const auto& row : rows) {
        for (const auto& close : closings) {
            Open();
            if (*row.hanging != '\0') {
                host.ToolHangs(row.hanging);
            }
            const auto calls = std::ssize(host.ToolCalls());
            row.before();
            if (*row.hanging != '\0') {
                const bool second = std::string_view(row.hanging) == "devs";
                ASSERT_TRUE(CallsAre(calls + (second ? 2 : 1))) << row.name;
                host.ToolHangs(row.hanging, false);
            }
            if (OpenMenu() != nullptr && &close != &closings[0] && &close != &closings[2]) {
                OpenMenu()->close();  // It takes the keys and clicks.
            }
            close();
            ASSERT_TRUE(WaitUntil([] { return QuilpWindow::gInstance == nullptr; })) << row.name;
            EXPECT_EQ(OpenMenu(), nullptr) << row.name;
            Open();
            EXPECT_EQ(Rows().size(), 4U) << row.name;
            widget().close();
            Stop();
        }
    }
}

TEST_F(ScriptedDeviceWindow, AContextMenuThatIsOpenGoesWithTheWindow)
{
    OpenAndForgetCalls();
    SelectRows({"lib/"});
    ASSERT_NE(OpenContextMenu(), nullptr);
    const QPointer<QAction> remove = OpenMenu()->actions().value(0);
    widget().close();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_EQ(OpenMenu(), nullptr);
    ASSERT_FALSE(remove.isNull()) << "it is handled yet";
    remove->trigger();
    EXPECT_TRUE(WaitUntil([&] { return remove.isNull(); }));
    Settle();
    EXPECT_EQ(NewCalls(), Strings{});
}

TEST_F(ScriptedDeviceWindow, ADragThatHoversWhenTheWindowClosesFindsNobody)
{
    OpenAndForgetCalls();
    const TemporaryFolder local;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(local.Write("a.py", "")))});
    const QPoint at = table().visualRect(table().model()->index(RowOf("lib/"), 0)).center();
    const QPointer<QWidget> over = table().viewport();
    Drag(*over, QDragEnterEvent(at, Qt::CopyAction, &data, Qt::LeftButton, {}));
    EXPECT_TRUE(Drag(*over, QDragMoveEvent(at, Qt::CopyAction, &data, Qt::LeftButton, {})));
    widget().close();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    ASSERT_FALSE(over.isNull()) << "the drag has not left it yet";
    over->grab();  // Paints where the drag was.
    EXPECT_FALSE(Drag(*over, QDragMoveEvent(at, Qt::CopyAction, &data, Qt::LeftButton, {})));
    EXPECT_FALSE(Drag(*over, QDropEvent(at, Qt::CopyAction, &data, Qt::LeftButton, {})));
    EXPECT_TRUE(WaitUntil([&] { return over.isNull(); }));
    Settle();
    EXPECT_EQ(NewCalls(), Strings{});
}

TEST_F(ScriptedDeviceWindow, MayBeOpenWhenTheProgramEnds)
{
    host.ToolHangs("ls");
    QuilpWindow::ShowInstance(&host);
    ASSERT_TRUE(CallsAre(1));
    runtime.CloseWindows();
    EXPECT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_TRUE(QuilpWindow::gWindowRect) << "asked to close, it remembers its frame";
    QuilpWindow::ShowInstance(&host);
    runtime.ShutDown();
    EXPECT_EQ(QuilpWindow::gInstance, nullptr);
}

TEST_F(ScriptedDeviceWindow, OfManyDirectoryChangesTheLastWins)
{
    OpenAndForgetCalls();
    auto* const window = QuilpWindow::gInstance;
    host.ToolSays("ls", "           7 of_another\n");
    host.ToolHangs("ls");
    window->ChangeDirectory("/slow", "");
    ASSERT_TRUE(CallsAre(3));
    // Its row may be on its way while the window goes on.
    host.ToolHangs("ls", false);
    host.ToolSays("ls", "           7 file.py\n");
    for (int i = 0; i < 10; ++i) {
        window->ChangeDirectory("/directory" + std::to_string(i), "file.py");
    }
    Settle();
    EXPECT_EQ(Rows(), Strings{"file.py"});
    EXPECT_EQ(dynamic_cast<IconTableItem*>(table().rows().ItemAt(0, 0))->path,
              "/directory9/file.py");
    EXPECT_EQ(Selection(), Strings{"file.py"});
    EXPECT_EQ(pathButton().text(), "directory9");
    EXPECT_FALSE(IsBusy());
}

TEST_F(ScriptedDeviceWindow, RowsOfAnOvertakenListingDoNotAppear)
{
    Open();
    host.ToolHangs("ls");
    const int before = host.PostedElsewhere();
    QuilpWindow::gInstance->Reload(&host, {});
    // All its lines are on their way; the event loop does not come to them.
    for (int i = 0; i < 2000 && host.PostedElsewhere() < before + 8; ++i) {
        QThread::msleep(5);
    }
    ASSERT_EQ(host.PostedElsewhere(), before + 8);
    host.ToolHangs("ls", false);
    QuilpWindow::gInstance->Reload(&host, {});
    Settle();
    EXPECT_EQ(Rows().size(), 4U);
}

TEST_F(ScriptedDeviceWindow, ADirectoryIsNotEnteredTwice)
{
    OpenAndForgetCalls();
    SelectRows({"lib/"});
    CommandKey(Qt::Key_Down);
    CommandKey(Qt::Key_Down);
    EXPECT_EQ(Rows(), Strings{}) << "rows of the root below /lib";
    Settle();
    EXPECT_EQ(NewCalls(), (Strings{"ls /lib", "devs"}));
}

TEST_F(ScriptedDeviceWindow, WhatTheUserSelectsMeanwhileStaysSelected)
{
    Open();
    DoubleClick("lib/");
    Settle();
    CommandKey(Qt::Key_Up);
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 4U && Selection().empty(); }));
    SelectRows({"boot.py"});
    Settle();
    EXPECT_EQ(Selection(), Strings{"boot.py"});
}

TEST_F(ScriptedDeviceWindow, AReloadThatIsOnlyPostedDoesNotStopARun)
{
    Open();
    host.ToolHangs("run");
    host.language = kPythonLanguage;
    host.document = "/tmp/a.py";
    host.HoldWork();
    QuilpWindow::gInstance->Reload({});
    ::Run(&host);
    host.ReleaseWork();
    ASSERT_TRUE(WaitUntil([&] { return host.ToolCalls().back() == "run /tmp/a.py"; }));
    EXPECT_FALSE(runtime.IsIdle());
    EXPECT_FALSE(IsBusy());
}

TEST_F(ScriptedDeviceWindow, WhatTheUserStartsMeanwhileIsNotStopped)
{
    host.ToolHangs("run");
    host.language = kPythonLanguage;
    host.document = "/tmp/a.py";
    for (const char* moment : {"while listing", "when the listing has ended"}) {
        Open();
        const auto calls = std::ssize(host.ToolCalls());
        if (std::string_view(moment) == "while listing") {
            host.ToolHangs("ls");
            PressButton("refresh");
            ASSERT_TRUE(CallsAre(calls + 1));
            ::Run(&host);
            host.ToolHangs("ls", false);
        } else {
            PressButton("refresh");
            ASSERT_TRUE(CallsAre(calls + 1));
            // Whatever the end of the listing posts waits behind the run.
            ASSERT_TRUE(WaitUntil([&] {
                host.HoldWork();
                return runtime.IsIdle();
            }));
            ::Run(&host);
            host.ReleaseWork();
        }
        ASSERT_TRUE(WaitUntil([&] { return host.ToolCalls().back() == "run /tmp/a.py"; }))
            << moment;
        EXPECT_FALSE(runtime.IsIdle()) << moment;
        EXPECT_TRUE(WaitUntil([&] { return !IsBusy(); })) << "turns for nothing " << moment;
        EXPECT_EQ(host.ToolCalls().back(), "run /tmp/a.py") << moment;
        Stop();
        Settle();
        PressButton("refresh");
        Settle();
        EXPECT_EQ(Rows().size(), 4U);
        widget().close();
    }
}

// The Device window with a scripted tool.

#include "quilp_window.h"

#include "Text.h"
#include "commands.h"
#include "device_window_fixture.h"
#include "leaks.h"
#include "menu_button.h"
#include "menus.h"
#include "runner.h"
#include "table_widget.h"
#include "window_widget.h"

#include <QApplication>
#include <QMenu>
#include <QScreen>
#include <QShortcut>
#include <QTest>
#include <QThread>
#include <QUrl>

#include <filesystem>
#include <functional>

namespace {

const char* const kBoardLine = "/dev/ttyACM0 e6614103e7 2e8a:0005 MicroPython Board in FS mode\n";

// Records its words, prints what was set for its command, and may then go on for a minute.
const char* const kTool =
    "#!/bin/sh\n"
    "cd \"${0%/*}\"\n"
    "echo \"$*\" >>calls\n"
    "cat \"says-$1\" 2>/dev/null\n"
    "[ ! -e \"hangs-$1\" ] || exec sleep 60\n";

class ScriptedDeviceWindow : public DeviceWindowTest {
  protected:
    ScriptedDeviceWindow()
    {
        host.itsBundle.path = bundle_.path();
        std::filesystem::permissions(bundle_.Write(kToolFolder + "mpremote.py", kTool),
                                     std::filesystem::perms::owner_all);
        std::filesystem::copy(QUILP_BUNDLE "/Resources/QuilpWindow.ui",
                              bundle_ / "Resources/QuilpWindow.ui");
        ToolPrints("ls",
                   "ls :\n         139 boot.py\n           0 lib/\n           0 data.d/\n"
                   "      no row\n     1234567 main.py\n");
        ToolPrints("devs", kBoardLine);
        host.language = kPythonLanguage;
        host.document = "/tmp/a.py";
    }
    ~ScriptedDeviceWindow() override { runtime.ShutDown(); }

    void ToolPrints(const std::string& command, const std::string& text)
    {
        bundle_.Write(kToolFolder + "says-" + command, text);
    }
    void ToolHangs(const std::string& command)
    {
        bundle_.Write(kToolFolder + "hangs-" + command, "");
    }
    void ToolEnds(const std::string& command)
    {
        std::filesystem::remove(bundle_ / (kToolFolder + "hangs-" + command));
    }
    // The tool's calls since the last time.
    Strings NewCalls()
    {
        const auto all = ReadFile(bundle_ / (kToolFolder + "calls"));
        Strings calls;
        for (const auto line : SplitLines(std::string_view(all).substr(seen_))) {
            calls.emplace_back(line);
        }
        seen_ = all.size();
        return calls;
    }
    // Waits until that is the tool's last call, and a new one.
    bool ToolIsCalled(const std::string& words)
    {
        return WaitUntil([&] {
            const auto calls = ReadFile(bundle_ / (kToolFolder + "calls"));
            return ("\n" + calls.substr(seen_)).ends_with("\n" + words + "\n");
        });
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
    void DeleteRows(const Strings& names)
    {
        SelectRows(names);
        CommandKey(Qt::Key_Backspace);
    }

    DraggedFile file;

  private:
    const std::string kToolFolder = "Resources/mpremote/";
    TemporaryFolder bundle_;
    std::size_t seen_ = 0;
};

}  // namespace

TEST_F(ScriptedDeviceWindow, ListsTheRootAndNamesTheBoardWhenItOpens)
{
    Open();
    EXPECT_EQ(NewCalls(), (Strings{"ls /", "devs"}));
    EXPECT_EQ(Rows(), (Strings{"boot.py", "lib/", "data.d/", "main.py"}));
    EXPECT_EQ(Entry(1).path, "/lib");
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
    ToolPrints("devs", std::string(kBoardLine) + "/dev/ttyS0 NOT-HEX 0000:0000 no MicroPython\n");
    Open();
    EXPECT_EQ(DeviceLabel(), "--");
    EXPECT_EQ(pathButton().text(), "Not Connected");
    EXPECT_FALSE(IsBusy());

    ToolPrints("devs", "");
    ToolPrints("ls", "");
    PressButton("refresh");
    Settle();
    EXPECT_EQ(Rows(), Strings{});
    EXPECT_EQ(DeviceLabel(), "--") << "without a line nothing changes";
    EXPECT_TRUE(IsBusy()) << "no device line has arrived";
}

TEST_F(ScriptedDeviceWindow, IsOneWindowWhoseFrameComesBackAfterACloseRequest)
{
    Open();
    PressButton("close");
    Settle();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_FALSE(QuilpWindow::gWindowRect) << "its own button does not remember";
    Open();
    auto* const window = QuilpWindow::gInstance;
    window->SetFrame({51, 61, 451, 561});
    EXPECT_EQ(QuilpWindow::ShowInstance(&host), window);
    EXPECT_EQ(window->Frame(), (BRect{51, 61, 451, 561})) << "opening it again does not move it";
    widget().close();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_EQ(QuilpWindow::ShowInstance(&host)->Frame(), (BRect{51, 61, 451, 561}));
    QuilpWindow::gInstance->Quit();

    QuilpWindow::gWindowRect = BRect{90000, -7000, 90400, -6500};
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
        {"Command-Down opens the first, once",
         [&] {
             SelectRows({"data.d/", "lib/"});
             CommandKey(Qt::Key_Down);
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

TEST_F(ScriptedDeviceWindow, PathsAreJoinedByTheirFirstCharactersAndNamesSelected)
{
    OpenAndForgetCalls();
    struct Row {
        const char* path;
        const char* select;
        Strings calls;
        Strings selection;
    };
    const Row rows[] = {
        {"/", "lib", {}, {}},
        {"../x", "none", {"ls ../x", "devs"}, {}},
        {"/a/", "lib", {"ls /a/", "devs"}, {"lib/"}},
        {"b", "", {"ls /a/b", "devs"}, {}},
        {"c", "boot.py", {"ls /a/b/c", "devs"}, {"boot.py"}},
    };
    auto* const window = QuilpWindow::gInstance;
    for (const auto& row : rows) {
        window->ChangeDirectory(row.path, row.select);
        Settle();
        EXPECT_EQ(NewCalls(), row.calls) << row.path;
        EXPECT_EQ(Selection(), row.selection) << row.path;
    }
    window->Select("none");
    window->Select("");
    EXPECT_EQ(Selection(), Strings{"boot.py"});
}

TEST_F(ScriptedDeviceWindow, ARowWithAShortenedNameStandsForItsFullPath)
{
    const std::string name(200, 'n');
    ToolPrints("ls", " 0 " + name + "/\n");
    OpenAndForgetCalls();
    const auto draw = [&] {
        table().rows().Publish();
        table().viewport()->grab();
        EXPECT_TRUE(Entry(0).Text().ends_with("…"));
    };
    draw();
    DoubleClick(name + "/");
    Settle();
    draw();
    DeleteRows({name + "/"});
    Settle();
    EXPECT_EQ(NewCalls().at(2), "rm -r :/" + name + "/" + name);
}

TEST_F(ScriptedDeviceWindow, ThePathMenuLeadsToEveryDirectoryAbove)
{
    Open();
    QuilpWindow::gInstance->ChangeDirectory("/lib/data.d", "");
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
        ClickItem(*OpenMenu(), row.chosen);
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
    EXPECT_FALSE(IsBusy());
    SelectRows({"main.py", "boot.py", "lib/"});
    QTest::keyClick(&table(), Qt::Key_Backspace);
    Settle();
    EXPECT_EQ(NewCalls(), Strings{}) << "nothing selected, or no Command";

    CommandKey(Qt::Key_Backspace);
    EXPECT_TRUE(IsBusy());
    EXPECT_EQ(Rows().size(), 4U) << "the rows stay until the reload";
    Settle();
    EXPECT_EQ(NewCalls(),
              (Strings{"rm -r :/main.py", "rm -r :/lib", "rm -r :/boot.py", "ls /", "devs"}));
    EXPECT_EQ(Selection(), Strings{});
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(taken, 0);
    EXPECT_EQ(host.worksheet, "");
}

TEST_F(ScriptedDeviceWindow, RefusesToDeleteAPathWithASingleQuote)
{
    ToolPrints("ls", " 1 'a'\n 1 it's\n 0 ''/\n 1 b\n");
    OpenAndForgetCalls();
    DeleteRows({"'a'", "it's", "''/"});
    EXPECT_TRUE(runtime.IsIdle());
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(Rows().size(), 4U);
    const auto line = host.worksheet;
    EXPECT_NE(line.find("single quote"), std::string::npos);
    EXPECT_EQ(line.find('\n'), line.size() - 1);

    host.worksheet.clear();
    DeleteRows({"'a'", "it's", "b"});
    Settle();
    EXPECT_EQ(NewCalls(), (Strings{"rm -r :/b", "ls /", "devs"}));
    EXPECT_EQ(host.worksheet, line);
}

TEST_F(ScriptedDeviceWindow, TheContextMenuOffersToDeleteWhatIsSelected)
{
    OpenAndForgetCalls();
    EXPECT_EQ(OpenContextMenu(), nullptr) << "empty";
    SelectRows({"lib/"});
    for (int time = 1; time <= 2; ++time) {
        ASSERT_NE(OpenContextMenu(), nullptr);
        EXPECT_EQ(LabelsOf(*OpenMenu()), Strings{"Delete"});
        OpenMenu()->close();
    }
    ASSERT_NE(OpenContextMenu(), nullptr);
    ClickItem(*OpenMenu(), "Delete");
    Settle();
    EXPECT_EQ(NewCalls(), (Strings{"rm -r :/lib", "ls /", "devs"}));
}

TEST_F(ScriptedDeviceWindow, DroppedFilesGoWhereTheyWereDropped)
{
    Open();
    DoubleClick("lib/");
    Settle();
    NewCalls();
    const QUrl url = file.data.urls().constFirst();
    const QUrl folder = QUrl::fromLocalFile(QString::fromStdString(file.folder.path() + "/"));
    struct Row {
        const char* name;
        QList<QUrl> urls;
        const char* onto;
        int offset;
        std::string call;  // empty: refused
    };
    const Row rows[] = {
        {"on a directory", {url, folder}, "data.d/", 0, "cp " + file.path + " :/lib/data.d"},
        {"on a file", {url, folder}, "main.py", 0, "cp " + file.path + " :/lib"},
        {"between rows", {url}, "data.d/", 10, "cp " + file.path + " :/lib"},
        {"below the rows", {url}, "", 0, "cp " + file.path + " :/lib"},
        {"a folder", {folder}, "data.d/", 0, "cp -r " + file.folder.path() + " :/lib/data.d"},
        {"no file", {}, "data.d/", 0, ""},
        {"a file of the net", {QUrl("https://localhost/a.py")}, "data.d/", 0, ""},
    };
    for (const auto& row : rows) {
        QMimeData data;
        data.setText("text");
        data.setUrls(row.urls);
        EXPECT_EQ(DragOver(data, row.onto, row.offset), !row.call.empty()) << row.name;
        EXPECT_EQ(Drop(data), !row.call.empty()) << row.name;
        Settle();
        EXPECT_EQ(NewCalls(), row.call.empty() ? Strings{} : (Strings{row.call, "ls /lib", "devs"}))
            << row.name;
    }
}

TEST_F(ScriptedDeviceWindow, ADropAfterTheRowsHaveGoneFindsNoRow)
{
    OpenAndForgetCalls();
    EXPECT_TRUE(DragOver(file.data, "lib/"));
    ToolHangs("ls");
    ToolPrints("ls", "");
    QuilpWindow::gInstance->Reload({});
    ToolEnds("ls");
    table().viewport()->grab();  // Paints where the drag was.
    EXPECT_TRUE(Drop(file.data));
    Settle();
    EXPECT_TRUE(std::ranges::count(NewCalls(), "cp " + file.path + " :/"));
}

// Each row closes the window at another moment; then it is opened again, at once.
TEST_F(ScriptedDeviceWindow, MayBeClosedAtAnyMoment)
{
    struct Row {
        const char* name;
        const char* hanging;  // the tool's command that is under way meanwhile
        const char* call;
        std::function<void()> before;
        std::function<void()> close;
    };
    const auto closeButton = [&] { PressButton("close"); };
    const auto closeWindow = [&] { widget().close(); };
    const auto closeKey = [&] { QTest::keyClick(&table(), Qt::Key_W, Qt::ControlModifier); };
    const auto quit = [&] { QuilpWindow::gInstance->Quit(); };
    const Row rows[] = {
        {"at once", "", "", [] {}, closeKey},
        {"while it lists", "ls", "ls /", [&] { PressButton("refresh"); }, closeButton},
        {"while it asks for the board", "devs", "devs", [&] { PressButton("refresh"); }, quit},
        {"in the middle of a deletion", "rm", "rm -r :/main.py",
         [&] {
             DeleteRows({"boot.py", "main.py"});
         },
         closeButton},
        {"while it uploads", "cp", "cp a :/", [&] { QuilpWindow::gInstance->Upload({"a"}, "/"); },
         closeWindow},
        {"with the path menu open", "", "", [&] { OpenPathMenu(); }, closeWindow},
        {"with the path menu open, by itself", "", "", [&] { OpenPathMenu(); }, quit},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Open();
        NewCalls();
        ToolHangs(row.hanging);
        row.before();
        ASSERT_TRUE(*row.call == '\0' || ToolIsCalled(row.call));
        ToolEnds(row.hanging);
        row.close();
        ASSERT_TRUE(WaitUntil([] { return QuilpWindow::gInstance == nullptr; }));
        EXPECT_EQ(OpenMenu(), nullptr);
        Open();
        EXPECT_EQ(Rows().size(), 4U);
        widget().close();
    }
}

TEST_F(ScriptedDeviceWindow, AMenuOrADragThatOutlivesTheWindowFindsNobody)
{
    OpenAndForgetCalls();
    SelectRows({"lib/"});
    ASSERT_NE(OpenContextMenu(), nullptr);
    const QPointer<QAction> remove = OpenMenu()->actions().value(0);
    const QPointer<QWidget> over = table().viewport();
    EXPECT_TRUE(DragOver(file.data, "lib/"));
    widget().close();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_EQ(OpenMenu(), nullptr);
    ASSERT_FALSE(remove.isNull()) << "it is still handled";
    remove->trigger();
    ASSERT_FALSE(over.isNull()) << "the drag has not left it yet";
    over->grab();  // Paints where the drag was.
    EXPECT_FALSE(MoveDrag(file.data));
    EXPECT_FALSE(Drop(file.data));
    EXPECT_TRUE(WaitUntil([&] { return over.isNull() && remove.isNull(); }));
    Settle();
    EXPECT_EQ(NewCalls(), Strings{});
}

TEST_F(ScriptedDeviceWindow, MayBeOpenWhenTheProgramEnds)
{
    ToolHangs("ls");
    QuilpWindow::ShowInstance(&host);
    ASSERT_TRUE(ToolIsCalled("ls /"));
    runtime.CloseWindows();
    EXPECT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_TRUE(QuilpWindow::gWindowRect) << "asked to close, it remembers its frame";
    QuilpWindow::ShowInstance(&host);
    runtime.ShutDown();
    EXPECT_EQ(QuilpWindow::gInstance, nullptr);
}

TEST_F(ScriptedDeviceWindow, RowsOfAnEarlierListingDoNotAppear)
{
    Open();
    ToolHangs("ls");
    const int before = host.rebound;
    QuilpWindow::gInstance->ChangeDirectory("/slow", "boot.py");
    // All its lines are posted; the event loop does not get to them.
    for (int i = 0; i < 2000 && host.rebound < before + 7; ++i) {
        QThread::msleep(5);
    }
    ASSERT_EQ(host.rebound, before + 7);
    ToolEnds("ls");
    ToolPrints("ls", " 7 file.py\n");
    QuilpWindow::gInstance->ChangeDirectory("/next", "file.py");
    QuilpWindow::gInstance->ChangeDirectory("/last", "file.py");
    Settle();
    EXPECT_EQ(Rows(), Strings{"file.py"});
    EXPECT_EQ(Entry(0).path, "/last/file.py");
    EXPECT_EQ(Selection(), Strings{"file.py"});
    EXPECT_EQ(pathButton().text(), "last");
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

TEST_F(ScriptedDeviceWindow, ADirectoryOpenedWhileADeletionRunsIsListed)
{
    Open();
    const auto threads = CurrentHoldings().threads;
    DeleteRows({"boot.py", "main.py"});
    ASSERT_TRUE(ToolIsCalled("rm -r :/main.py"));
    // The end of the first deletion is posted; the event loop does not get to it.
    for (int i = 0; i < 2000 && CurrentHoldings().threads > threads; ++i) {
        QThread::msleep(5);
    }
    DoubleClick("lib/");
    Settle();
    EXPECT_EQ(Rows().size(), 4U);
    EXPECT_EQ(Entry(0).path, "/lib/boot.py");
    EXPECT_FALSE(IsBusy());
}

TEST_F(ScriptedDeviceWindow, ADeletionRightAfterARefreshEndsInAListing)
{
    Open();
    SelectRows({"boot.py"});
    PressButton("refresh");
    runtime.queue().Post([&] { CommandKey(Qt::Key_Backspace); });
    Settle();
    EXPECT_EQ(Rows().size(), 4U);
    EXPECT_FALSE(IsBusy());
}

TEST_F(ScriptedDeviceWindow, ARunIsNotStoppedAndLeavesNoRowsOfChangedFiles)
{
    struct Row {
        const char* hanging;
        const char* call;
        std::function<void()> act;
    };
    const Row rows[] = {
        {"ls", "ls /", [&] { PressButton("refresh"); }},
        {"devs", "devs", [&] { PressButton("refresh"); }},
        {"rm", "rm -r :/main.py",
         [&] {
             DeleteRows({"boot.py", "main.py"});
         }},
        {"cp", "cp a :/", [&] { QuilpWindow::gInstance->Upload({"a"}, "/"); }},
    };
    ToolHangs("run");
    Open();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hanging);
        NewCalls();
        ToolPrints("devs", "");
        ToolHangs(row.hanging);
        row.act();
        ASSERT_TRUE(ToolIsCalled(row.call));
        ::Run(&host);
        ToolEnds(row.hanging);
        ASSERT_TRUE(ToolIsCalled("run /tmp/a.py"));
        EXPECT_FALSE(runtime.IsIdle());
        EXPECT_TRUE(IsBusy()) << "no device line has arrived";
        if (&row >= &rows[2]) {
            EXPECT_EQ(Rows(), Strings{}) << "a file may be gone";
        }
        ::Stop();
        ToolPrints("devs", kBoardLine);
        PressButton("refresh");
        Settle();
        EXPECT_EQ(Rows().size(), 4U);
        EXPECT_FALSE(IsBusy());
    }
}

TEST_F(ScriptedDeviceWindow, AnUploadThatReplacesADeletionKeepsTheRowsUntilTheReload)
{
    OpenAndForgetCalls();
    ToolHangs("rm");
    DeleteRows({"boot.py"});
    ASSERT_TRUE(ToolIsCalled("rm -r :/boot.py"));
    EXPECT_TRUE(DragOver(file.data, "lib/"));
    EXPECT_TRUE(Drop(file.data));
    EXPECT_EQ(Rows().size(), 4U);
    Settle();
    EXPECT_EQ(NewCalls(),
              (Strings{"rm -r :/boot.py", "cp " + file.path + " :/lib", "ls /", "devs"}));
}

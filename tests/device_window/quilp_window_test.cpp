// The Device window with a scripted tool.

#include "quilp_window.h"

#include "Text.h"
#include "commands.h"
#include "device_window_fixture.h"
#include "leaks.h"

#include <QScreen>
#include <QShortcut>
#include <QThread>

namespace {

const char* const kBoardLine = "/dev/ttyACM0 e6614103e7 2e8a:0005 MicroPython Board in FS mode\n";

// Records its arguments and prints the text set for its command. May then hang, once.
const char* const kTool =
    "#!/bin/sh\n"
    "cd \"${0%/*}\"\n"
    "rm \"hangs-$1\" 2>/dev/null && hangs=1\n"
    "echo \"$*\" >>calls\n"
    "cat \"prints-$1\" 2>/dev/null\n"
    "[ -z \"$hangs\" ] || exec sleep 60\n";

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
        Open();
        TakeCalls();
        idleThreads_ = CurrentHoldings().threads;
    }

    void ToolPrints(const std::string& command, const std::string& text)
    {
        bundle_.Write(kToolFolder + "prints-" + command, text);
    }
    // Returns the tool's calls since the last time.
    Strings TakeCalls()
    {
        const auto all = ReadFile(bundle_ / (kToolFolder + "calls"));
        const auto lines = SplitLines(std::string_view(all).substr(seen_));
        seen_ = all.size();
        return {lines.begin(), lines.end()};
    }
    Strings SettledCalls()
    {
        Settle();
        return TakeCalls();
    }
    // Starts an operation and waits for this call of the tool, which hangs.
    void StartHanging(const std::function<void()>& start, const std::string& call)
    {
        TakeCalls();
        bundle_.Write(kToolFolder + "hangs-" + call.substr(0, call.find(' ')), "");
        start();
        EXPECT_TRUE(WaitUntil([&] { return std::ranges::count(TakeCalls(), call) > 0; })) << call;
    }
    // Waits until the running command has exited, but delivers nothing of it.
    void LetCommandExit() const
    {
        for (int i = 0; i < 4000 && CurrentHoldings().threads > idleThreads_; ++i) {
            QThread::msleep(5);
        }
    }
    void Refresh()
    {
        PressButton("refresh");
        Settle();
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
    std::size_t idleThreads_ = 0;
};

}  // namespace

TEST_F(ScriptedDeviceWindow, ListsTheRootAndShowsTheBoardOfTheLastDeviceLine)
{
    EXPECT_EQ(Rows(), (Strings{"boot.py", "lib/", "data.d/", "main.py"}));
    EXPECT_EQ(Entry(1).path, "/lib");
    for (const auto& [row, size] : {std::pair(0, "139"), {1, "--"}, {3, "1234567"}}) {
        EXPECT_EQ(dynamic_cast<SizeTableItem*>(table().rows().ItemAt(row, 1))->sizeText, size);
    }
    EXPECT_EQ(DeviceLabel(), "MicroPython Board in FS mode /dev/ttyACM0");
    EXPECT_EQ(pathButton().text(), "/dev/ttyACM0");
    EXPECT_FALSE(IsBusy());

    ToolPrints("devs", std::string(kBoardLine) + "/dev/ttyS0 NOT-HEX 0000:0000 no MicroPython\n");
    Refresh();
    EXPECT_EQ(DeviceLabel(), "--");
    EXPECT_EQ(pathButton().text(), "Not Connected");
    EXPECT_FALSE(IsBusy());

    ToolPrints("devs", "");
    ToolPrints("ls", "");
    Refresh();
    EXPECT_EQ(Rows(), Strings{});
    EXPECT_EQ(DeviceLabel(), "--") << "without a device line nothing changes";
    EXPECT_TRUE(IsBusy()) << "no device line has arrived";
}

TEST_F(ScriptedDeviceWindow, IsOneWindowWhoseFrameIsRestoredAfterACloseRequest)
{
    PressButton("close");
    Settle();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_FALSE(QuilpWindow::gWindowRect) << "its own button does not save the frame";
    auto* const window = QuilpWindow::ShowInstance(&host);
    EXPECT_EQ(SettledCalls(), (Strings{"ls /", "devs"}));
    const BRect moved{51, 61, 451, 561};
    window->SetFrame(moved);
    EXPECT_EQ(QuilpWindow::ShowInstance(&host), window);
    EXPECT_EQ(window->Frame(), moved) << "opening it again does not move it";
    EXPECT_EQ(widget().frameGeometry(), QRect(51, 61, 400, 500)) << "without its decoration";
    QTest::keyClick(&table(), Qt::Key_W, Qt::ControlModifier);
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_EQ(QuilpWindow::ShowInstance(&host)->Frame(), moved);
    runtime.CloseWindows();

    QuilpWindow::gWindowRect = BRect{90000, -7000, 90400, -6500};
    const auto frame = QuilpWindow::ShowInstance(&host)->Frame();
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(frame.right, screen.x() + screen.width() - 10);
    EXPECT_EQ(frame.top, screen.y() + 10);
}

TEST_F(ScriptedDeviceWindow, DirectoriesAreEnteredAndLeft)
{
    const auto go = [](const char* path, const char* select) {
        return [path, select] { QuilpWindow::gInstance->ChangeDirectory(path, select); };
    };
    const auto press = [&](Qt::Key key) { return [this, key] { CommandKey(key); }; };
    const auto openTwo = [&] {
        SelectRows({"data.d/", "lib/"});
        CommandKey(Qt::Key_Down);
        CommandKey(Qt::Key_Down);
    };
    const std::tuple<const char*, std::function<void()>, Strings, Strings> rows[] = {
        {"double click on a file", [&] { DoubleClick("main.py"); }, {}, {"main.py"}},
        {"Command-Down on a file", press(Qt::Key_Down), {}, {"main.py"}},
        {"Command-Up at the root", press(Qt::Key_Up), {}, {"main.py"}},
        {"double click", [&] { DoubleClick("lib/"); }, {"ls /lib", "devs"}, {}},
        {"Command-Down without a selection", press(Qt::Key_Down), {}, {}},
        {"Command-Down opens the first, once", openTwo, {"ls /lib/lib", "devs"}, {}},
        {"Command-Up", press(Qt::Key_Up), {"ls /lib", "devs"}, {"lib/"}},
        {"Command-Up to the root", press(Qt::Key_Up), {"ls /", "devs"}, {"lib/"}},
        {"Return", [&] { QTest::keyClick(&table(), Qt::Key_Return); }, {"ls /lib", "devs"}, {}},
        {"the current path", go("/lib", "boot.py"), {}, {}},
        {"..", go("../x", "none"), {"ls ../x", "devs"}, {}},
        {"a slash at the end", go("/a/", "lib"), {"ls /a/", "devs"}, {"lib/"}},
        {"relative", go("b", "boot.py"), {"ls /a/b", "devs"}, {"boot.py"}},
        {"another row", [] { QuilpWindow::gInstance->Select("lib"); }, {}, {"lib/"}},
        {"no such row", [] { QuilpWindow::gInstance->Select("none"); }, {}, {"lib/"}},
        {"no name", [] { QuilpWindow::gInstance->Select(""); }, {}, {"lib/"}},
    };
    for (const auto& [name, act, calls, selection] : rows) {
        act();
        EXPECT_EQ(SettledCalls(), calls) << name;
        EXPECT_EQ(Selection(), selection) << name;
    }
}

TEST_F(ScriptedDeviceWindow, ARowWithAShortenedNameIsOpenedAndDeletedByItsFullPath)
{
    const std::string name(200, 'n');
    ToolPrints("ls", " 0 " + name + "/\n");
    PressButton("refresh");
    const auto selectShortened = [&] {
        Settle();
        table().rows().Publish();
        table().viewport()->grab();
        EXPECT_TRUE(Entry(0).Text().ends_with("…"));
        SelectRows({name + "/"});
        TakeCalls();
    };
    selectShortened();
    const auto toolTip = table().model()->index(0, 0).data(Qt::ToolTipRole).toString();
    EXPECT_NE(toolTip.toStdString().find(name), std::string::npos) << "the tool tip of the row";
    DoubleClick(name + "/");
    EXPECT_LT(OpenPathMenu().at(0).size(), name.size() / 2);
    const auto itemTip = OpenMenu()->actions().at(0)->toolTip().toStdString();
    EXPECT_NE(itemTip.find(name), std::string::npos) << "the tool tip of the item";
    OpenMenu()->close();
    selectShortened();
    CommandKey(Qt::Key_Down);
    selectShortened();
    CommandKey(Qt::Key_Backspace);
    EXPECT_EQ(SettledCalls().at(0), "rm -r :/" + name + "/" + name + "/" + name);
}

TEST_F(ScriptedDeviceWindow, ThePathMenuLeadsToEveryDirectoryAbove)
{
    QuilpWindow::gInstance->ChangeDirectory("/lib/data.d", "");
    SettledCalls();
    const std::tuple<const char*, Strings, Strings> rows[] = {
        {"data.d", {"data.d", "lib", "/dev/ttyACM0"}, {"ls //lib/data.d", "devs"}},
        {"lib", {"data.d", "lib", "/dev/ttyACM0"}, {"ls //lib", "devs"}},
        {"/dev/ttyACM0", {"lib", "/dev/ttyACM0"}, {"ls /", "devs"}},
        {"/dev/ttyACM0", {"/dev/ttyACM0"}, {}},
    };
    const auto icon = [](const QAction* item) { return item->icon().pixmap(16).toImage(); };
    for (const auto& [chosen, labels, calls] : rows) {
        EXPECT_EQ(OpenPathMenu(), labels);
        const auto items = OpenMenu()->actions();
        EXPECT_EQ(icon(items.front()) == icon(items.back()), labels.size() == 1);
        ChooseItem(*OpenMenu(), chosen);
        EXPECT_EQ(SettledCalls(), calls) << chosen;
        EXPECT_EQ(pathButton().text(), chosen);
    }
    PressButton("refresh");
    EXPECT_EQ(widget().focusWidget(), &table()) << "a click took the keyboard";
    QTest::keyClick(&pathButton(), Qt::Key_Down);
    ASSERT_NE(OpenMenu(), nullptr);
    EXPECT_EQ(OpenMenu()->activeAction(), OpenMenu()->actions().at(0)) << "opened by a key";
}

TEST_F(ScriptedDeviceWindow, DeletesTheSelectionByKeyOrMenuAndListsAgain)
{
    QShortcut rival(QKeySequence(Qt::CTRL | Qt::Key_Backspace), &widget());
    QObject::connect(&rival, &QShortcut::activated, [] { FAIL() << "a shortcut took the key"; });
    widget().activateWindow();
    CommandKey(Qt::Key_Backspace);
    EXPECT_FALSE(IsBusy());
    SelectRows({"main.py", "boot.py", "lib/"});
    QTest::keyClick(&table(), Qt::Key_Backspace);
    EXPECT_EQ(SettledCalls(), Strings{}) << "nothing is selected, or Command is not held";
    CommandKey(Qt::Key_Backspace);
    EXPECT_TRUE(IsBusy());
    EXPECT_EQ(Rows().size(), 4U) << "the rows stay until the reload";
    EXPECT_EQ(SettledCalls(),
              (Strings{"rm -r :/main.py", "rm -r :/lib", "rm -r :/boot.py", "ls /", "devs"}));
    EXPECT_EQ(Selection(), Strings{});
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(host.worksheet, "");

    EXPECT_EQ(OpenContextMenu(), nullptr) << "nothing is selected";
    SelectRows({"lib/"});
    const int y = CenterOf("lib/").y();
    const QImage image = table().viewport()->grab().toImage();
    EXPECT_NE(image.pixel(6, y), image.pixel(2, y)) << "the icon is directly on the selection";
    ASSERT_NE(OpenContextMenu(), nullptr);
    OpenMenu()->close();
    ASSERT_NE(OpenContextMenu(), nullptr);
    EXPECT_EQ(LabelsOf(*OpenMenu()), Strings{"Delete"});
    EXPECT_EQ(OpenMenu()->activeAction(), OpenMenu()->actions().at(0)) << "opened by a key";
    ChooseItem(*OpenMenu(), "Delete");
    EXPECT_EQ(SettledCalls(), (Strings{"rm -r :/lib", "ls /", "devs"}));
}

TEST_F(ScriptedDeviceWindow, RefusesToDeleteAPathWithASingleQuote)
{
    ToolPrints("ls", " 1 'a'\n 1 it's\n 0 ''/\n 1 b\n");
    Refresh();
    TakeCalls();
    DeleteRows({"'a'", "it's", "''/", "b"});
    EXPECT_EQ(SettledCalls(), (Strings{"rm -r :/b", "ls /", "devs"}));
    EXPECT_NE(host.worksheet.find("single quote"), std::string::npos);
    EXPECT_EQ(host.worksheet.find('\n'), host.worksheet.size() - 1);
}

TEST_F(ScriptedDeviceWindow, DroppedFilesAreCopiedToTheRowOrTheCurrentDirectory)
{
    DoubleClick("lib/");
    TakeCalls();
    const QUrl url = file.data.urls().constFirst();
    const QUrl folder = QUrl::fromLocalFile(QString::fromStdString(file.folder.path() + "/"));
    const std::string copy = "cp " + file.path;
    const std::tuple<const char*, QList<QUrl>, const char*, int, std::string> rows[] = {
        {"on a directory", {url, folder}, "data.d/", 0, copy + " :/lib/data.d"},
        {"on a file", {url, folder}, "main.py", 0, copy + " :/lib"},
        {"between rows", {url}, "data.d/", 10, copy + " :/lib"},
        {"below the rows", {url}, "", 0, copy + " :/lib"},
        {"a folder", {folder}, "data.d/", 0, "cp -r " + file.folder.path() + " :/lib/data.d"},
        {"no file", {}, "data.d/", 0, ""},
        {"a remote file", {QUrl("https://localhost/a.py")}, "data.d/", 0, ""},
    };
    for (const auto& [name, urls, onto, offset, call] : rows) {
        SCOPED_TRACE(name);
        QMimeData data;
        data.setText("text");
        data.setUrls(urls);
        EXPECT_EQ(DragOver(data, onto, offset), !call.empty());
        EXPECT_EQ(Drop(data), !call.empty());
        EXPECT_EQ(SettledCalls(), call.empty() ? Strings{} : (Strings{call, "ls /lib", "devs"}));
    }

    EXPECT_TRUE(DragOver(file.data, "data.d/"));
    QuilpWindow::gInstance->Reload({});
    table().viewport()->grab();
    EXPECT_TRUE(Drop(file.data));
    EXPECT_TRUE(std::ranges::count(SettledCalls(), copy + " :/lib")) << "the row does not exist";
}

TEST_F(ScriptedDeviceWindow, AnInterruptedOperationLeavesNoOutdatedRowsAndMayOutliveTheWindow)
{
    const auto refresh = [&] { PressButton("refresh"); };
    const auto deleteTwo = [&] { DeleteRows({"boot.py", "main.py"}); };
    const auto upload = [] { QuilpWindow::gInstance->Upload({"a"}, "/"); };
    const auto quit = [] { QuilpWindow::gInstance->Quit(); };
    const auto pressClose = [&] { PressButton("close"); };
    using Act = std::function<void()>;
    const std::tuple<const char*, Act, bool, Act> rows[] = {
        {"ls /", refresh, false, pressClose},
        {"devs", refresh, false, quit},
        {"rm -r :/main.py", deleteTwo, true, pressClose},
        {"cp a :/", upload, true, quit},
    };
    for (const auto& [call, start, changesFiles, closeWindow] : rows) {
        SCOPED_TRACE(call);
        ToolPrints("devs", "");
        StartHanging(start, call);
        StartHanging([&] { ::Run(&host); }, "run /tmp/a.py");
        EXPECT_TRUE(IsBusy()) << "no device line has arrived";
        EXPECT_TRUE(!changesFiles || Rows().empty());
        ::Stop();
        ToolPrints("devs", kBoardLine);
        Refresh();
        EXPECT_EQ(Rows().size(), 4U);
        EXPECT_FALSE(IsBusy());
        StartHanging(start, call);
        closeWindow();
        EXPECT_TRUE(WaitUntil([] { return QuilpWindow::gInstance == nullptr; }));
        Open();
        EXPECT_EQ(Rows().size(), 4U);
    }
    StartHanging(deleteTwo, "rm -r :/main.py");
    upload();
    EXPECT_EQ(Rows().size(), 4U) << "the upload reloads them";
    EXPECT_EQ(SettledCalls(), (Strings{"cp a :/", "ls /", "devs"}));
}

TEST_F(ScriptedDeviceWindow, AMenuOrADragThatOutlivesTheWindowDoesNothing)
{
    OpenPathMenu();
    QuilpWindow::gInstance->Quit();
    EXPECT_EQ(OpenMenu(), nullptr);
    Open();
    TakeCalls();
    SelectRows({"lib/"});
    ASSERT_NE(OpenContextMenu(), nullptr);
    const QPointer<QAction> remove = OpenMenu()->actions().value(0);
    const QPointer<QWidget> viewport = table().viewport();
    EXPECT_TRUE(DragOver(file.data, "lib/"));
    widget().close();
    ASSERT_EQ(QuilpWindow::gInstance, nullptr);
    EXPECT_EQ(OpenMenu(), nullptr);
    ASSERT_TRUE(remove && viewport) << "events may still reach them";
    remove->trigger();
    viewport->grab();
    EXPECT_FALSE(MoveDrag(file.data));
    EXPECT_FALSE(Drop(file.data));
    EXPECT_TRUE(WaitUntil([&] { return !viewport && !remove; }));
    EXPECT_EQ(SettledCalls(), Strings{});
}

TEST_F(ScriptedDeviceWindow, WhatTheUserDoesDuringACommandPrevails)
{
    QuilpWindow::gInstance->ChangeDirectory("/slow", "boot.py");
    LetCommandExit();
    ToolPrints("ls", " 7 file.py\n 0 sub/\n");
    QuilpWindow::gInstance->ChangeDirectory("/next", "file.py");
    QuilpWindow::gInstance->ChangeDirectory("/last", "file.py");
    Settle();
    EXPECT_EQ(Rows(), (Strings{"file.py", "sub/"}));
    EXPECT_EQ(Entry(0).path, "/last/file.py");
    EXPECT_EQ(Selection(), Strings{"file.py"});
    EXPECT_EQ(pathButton().text(), "last");

    DeleteRows({"file.py", "sub/"});
    LetCommandExit();
    DoubleClick("sub/");
    EXPECT_EQ(Entry(0).path, "/last/sub/file.py");
    EXPECT_FALSE(IsBusy());

    QuilpWindow::gInstance->ChangeDirectory("/a", "sub");
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 2U; }));
    SelectRows({"file.py"});
    Settle();
    EXPECT_EQ(Selection(), Strings{"file.py"});
}

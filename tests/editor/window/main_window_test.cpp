// The editor with its real window, the real plug-in and the real tool.

#include "editor_window_fixture.h"

#include "board_actions.h"
#include "board_files_dialog.h"
#include "board_process.h"
#include "control_tool_bar.h"
#include "file_save.h"
#include "leaks.h"
#include "recovery.h"
#include "run_control.h"
#include "shortcuts_dialog.h"
#include "subprocess.h"
#include "table_widget.h"
#include "text_editor.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

namespace {

namespace fs = std::filesystem;

constexpr const char* kEndless = "while True:\n    print('round')\n";

TableWidget* DeviceTable()
{
    for (auto* const widget : QApplication::topLevelWidgets()) {
        auto* const table = widget->findChild<TableWidget*>("listing");
        if (table != nullptr && table->isVisible()) {
            return table;
        }
    }
    return nullptr;
}

// Whether the folder contains a complete recovery copy. Its lock file is empty.
bool HasCopy(const std::string& folder)
{
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        const bool isBeingWritten = entry.path().filename().string().starts_with(kTemporaryPrefix);
        if (entry.is_regular_file(error) && entry.file_size(error) > 0 && !isBeingWritten) {
            return true;
        }
    }
    return false;
}

}  // namespace

// This program's own versions of two system calls simulate a disk.
namespace {

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

TEST_F(EditorWindow, RunsFollowsErrorsStopsAndUploads)
{
    Start({Write("fails.py", "def half(number):\n    return 1 / number\n\nhalf(0)\n")});
    AttachBoard();
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("ZeroDivisionError"));
    Press(Qt::Key_F4);
    EXPECT_EQ(editor().CaretLine(), 4);
    Press(Qt::Key_F4);
    EXPECT_EQ(editor().CaretLine(), 2);

    window().OpenFiles({Write("loop.py", kEndless)});
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("round"));
    Press(Qt::Key_F5, Qt::ShiftModifier);
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));

    Press(Qt::Key_F6);
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    EXPECT_EQ(Read("board/loop.py"), kEndless);

    Action("Status")->trigger();
    EXPECT_TRUE(SheetShows("avail")) << Sheet();
}

TEST_F(EditorWindow, SaysWhatRunsAndThatAnUploadWasCutShort)
{
    Start({Write("big.py", std::string(400'000, '\n')), Write("loop.py", kEndless)});
    AttachBoard();
    const auto shows = [&](const QString& text) {
        const auto* const label = window().findChild<QLabel*>("activity");
        return WaitUntil([&] { return label->text().startsWith(text); });
    };
    auto* const stop = window().findChild<ControlToolBar*>()->actions().constLast();
    EXPECT_FALSE(stop->isEnabled());
    Press(Qt::Key_F5);
    EXPECT_TRUE(shows("Running loop.py"));
    EXPECT_EQ(stop->toolTip(), "Stop loop.py (Shift+F5)");
    stop->trigger();
    EXPECT_TRUE(shows("Stopped"));
    EXPECT_FALSE(stop->isEnabled());

    window().OpenFiles({PathOf("big.py")});
    Press(Qt::Key_F6);
    ASSERT_TRUE(WaitUntil([&] { return fs::exists(folder / "board/big.py"); }));
    EXPECT_TRUE(shows("Uploading big.py"));
    Press(Qt::Key_F7);
    EXPECT_TRUE(MessageShows("The upload of big.py was stopped"));
    EXPECT_TRUE(shows("Finished"));
    Answer("Upload Again");
    EXPECT_TRUE(shows("Uploading big.py"));
    EXPECT_EQ(Message(), "");
}

TEST_F(EditorWindow, ThePromptKeepsTheBoardsStateUntilACommandOvertakesIt)
{
    const QString file = Write("run.py", "print('ran')\n");
    const auto temporaryBefore = qgetenv("TMPDIR");
    Start({file});
    AttachBoard();
    const auto isIdle = [] { return WaitUntil([] { return Runtime::Current().IsIdle(); }); };
    const auto enter = [&](const QString& text) {
        QApplication::clipboard()->setText(text);
        Press(Qt::Key_V, Qt::ControlModifier);
        Press(Qt::Key_Return);
    };
    Press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    enter("import os; x = 6");
    enter("for i in range(2):\n    print(i)");  // Waits for the first one.
    enter("x * 7");
    ASSERT_TRUE(SheetShows("42\n"));
    EXPECT_EQ(Sheet(),
              ">>> import os; x = 6\n>>> for i in range(2):\n...     print(i)\n0\n1\n"
              ">>> x * 7\n42\n");
    ASSERT_TRUE(isIdle());
    enter("x / 0");
    EXPECT_TRUE(SheetShows("ZeroDivisionError"));
    EXPECT_FALSE(window().worksheet().GoToNextLink());

    qputenv("TMPDIR", folder.path().c_str());
    ASSERT_TRUE(isIdle());
    enter("#" + QString(150'000, u'-') + "\nprint('long')");
    EXPECT_TRUE(SheetShows("\nlong\n"));
    ASSERT_TRUE(isIdle());
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        EXPECT_FALSE(entry.path().filename().string().starts_with("quilp-prompt"));
    }
    temporaryBefore.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", temporaryBefore);

    auto& text = *window().findChild<QPlainTextEdit*>();
    QTest::keyClicks(&text, "os.renam");
    Press(Qt::Key_Tab);
    EXPECT_TRUE(WaitUntil([&] { return text.toPlainText() == "os.rename"; }));
    text.clear();
    ASSERT_TRUE(isIdle());
    enter("while True: pass");
    EXPECT_TRUE(WaitUntil([&] { return text.accessibleName() == "Input to the program"; }));
    Press(Qt::Key_F5);
    EXPECT_TRUE(SheetShows("while True: pass\nran\n")) << Sheet();
    ASSERT_TRUE(isIdle());
    EXPECT_EQ(text.accessibleName(), "Board prompt");

    Press(Qt::Key_Escape);
    editor().SetContent("    x = 'selected'\n    x\n");
    editor().setSelection(0, 4, 1, 5);
    Press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(SheetShows(">>> x = 'selected'\n... x\n"));
    ASSERT_TRUE(isIdle());
    editor().GoToLine(2);
    Press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(SheetShows(">>> x\n'selected'\n"));
    Close();
    Start();
    Press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    Press(Qt::Key_Up);
    EXPECT_EQ(window().findChild<QPlainTextEdit*>()->toPlainText(), "while True: pass");
}

TEST_F(EditorWindow, AProgramReadsWhatIsEnteredInTheFieldAlsoWhileItPrints)
{
    Start({Write("reads.py",
                 "import select, sys\n"
                 "print('Hello', input('Name? '))\n"
                 "try:\n"
                 "    input()\n"
                 "except EOFError:\n"
                 "    print('at the end')\n"
                 "poll = select.poll()\n"
                 "poll.register(sys.stdin, select.POLLIN)\n"
                 "while not poll.poll(0):\n"
                 "    print('round')\n"
                 "print('read', sys.stdin.readline())\n")});
    AttachBoard();
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("Name? "));
    Press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    auto* const field = QApplication::focusWidget();
    EXPECT_EQ(field->accessibleName(), "Input to reads.py");
    QTest::keyClicks(field, "Ada");
    Press(Qt::Key_Return);
    ASSERT_TRUE(SheetShows("Name? Ada\nHello Ada\n"));
    Press(Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(SheetShows("at the end\nround\nround\n")) << Sheet();
    QTest::keyClicks(field, "line");
    Press(Qt::Key_Return);
    EXPECT_TRUE(SheetShows("round\nread line\n"));
}

TEST_F(EditorWindow, OpensAFileOfTheBoardRunsItsTextAndSavesItThere)
{
    const std::string name = "board/lib/it's \"\\ü.py";
    Write("board/main.py", "");
    Write(name, "print('old')");
    Start();
    AttachBoard();
    const auto chooseFile = [&](const QString& filter) {
        Press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
        auto* const dialog = window().findChild<BoardFilesDialog*>();
        auto* const list = dialog->findChild<QTreeWidget*>();
        ASSERT_TRUE(WaitUntil([&] { return list->topLevelItemCount() == 2; }));
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), filter);
        QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
    };
    chooseFile("lib PY");
    auto& documents = window().documents();
    const auto tabShows = [&](const QString& text) {
        return WaitUntil([&] { return documents.tabText(0) == text; });
    };
    ASSERT_TRUE(tabShows("it's \"\\ü.py (on the board)")) << Message();
    EXPECT_NE(window().findChild<QToolButton*>("board")->toolTip().indexOf("MicroPython"), -1);

    editor().selectAll();
    Type("print('new')");
    Press(Qt::Key_Return);
    Type("1/0");
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("new\n"));
    ASSERT_TRUE(SheetShows("ZeroDivisionError"));
    EXPECT_EQ(Read(name), "print('old')") << "a run is no save";
    Press(Qt::Key_F4);
    EXPECT_EQ(documents.count(), 1) << "the traceback leads to the copy";
    EXPECT_EQ(editor().CaretLine(), 2);

    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(tabShows("it's \"\\ü.py (on the board)"));
    EXPECT_EQ(Read(name), "print('new')\n1/0");
    chooseFile("it's");
    Write(name, "another program's");
    Type("#");
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(MessageShows("the file on the board has changed"));
    EXPECT_EQ(Read(name), "another program's");
    Answer("Overwrite");
    EXPECT_TRUE(WaitUntil([&] { return Read(name) == "print('new')\n#1/0"; })) << Read(name);
    EXPECT_TRUE(tabShows("it's \"\\ü.py (on the board)"));

    chooseFile("main");
    EXPECT_TRUE(WaitUntil([&] { return documents.count() == 2; }));
    Type("3");
    documents.setCurrentIndex(0);
    fs::remove(folder / name);
    Type("2");
    EXPECT_FALSE(documents.saver().SaveAll()) << "both wait for the board";
    EXPECT_TRUE(MessageShows("the file is no longer on the board"));
    EXPECT_TRUE(WaitUntil([&] { return Read("board/main.py") == "3"; }));
    Answer("Save Anyway");
    EXPECT_TRUE(WaitUntil([&] { return Read(name) == "print('new')\n#21/0"; })) << Read(name);
    EXPECT_TRUE(tabShows("it's \"\\ü.py (on the board)"));

    window().board().DetachVirtualBoard();
    EXPECT_TRUE(MessageShows("is not attached. The text is kept here"));
    Type("3");
    WhenAskedPress(QMessageBox::Save);
    EXPECT_FALSE(documents.Close(0));
    EXPECT_TRUE(MessageShows("was not saved: its board is not attached"));
    AttachBoard();
    WhenAskedPress(QMessageBox::Save);
    EXPECT_TRUE(documents.Close(0)) << Message();
    EXPECT_EQ(Read(name), "print('new')\n#231/0");
}

TEST_F(EditorWindow, UploadsFilesWithAnyNameOneAfterAnotherAndRestarts)
{
    const QStringList files{Write("a b.txt", "1"), Write("it's # \\.bin", EveryByte()),
                            PathOf("lib"), Write("main.py", "print('from', __name__)\n1/0")};
    Write("lib/sub/x.py", "3");
    Start();
    AttachBoard();
    window().findChild<BoardActions*>()->Upload(files);
    EXPECT_TRUE(WaitUntil(
        [&] { return window().findChild<QLabel*>("activity")->text().endsWith("– 2 of 4"); }));
    EXPECT_TRUE(WaitUntil([&] { return Read("board/main.py") == Read("main.py"); })) << Sheet();
    EXPECT_EQ(Read("board/a b.txt"), "1");
    EXPECT_EQ(Read("board/it's # \\.bin"), EveryByte());
    EXPECT_EQ(Read("board/lib/sub/x.py"), "3");
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    Action("Run main.py")->trigger();
    EXPECT_TRUE(SheetShows("from __main__"));
    EXPECT_TRUE(SheetShows("\"main.py\", line 2"));
    Action("Restart")->trigger();
    EXPECT_TRUE(SheetShows("Firmware: MicroPython"));
    const auto& sheet = *window().findChild<Worksheet*>();
    EXPECT_EQ(sheet.SendScintilla(QsciScintilla::SCI_GETCURRENTPOS), sheet.length());
}

TEST_F(EditorWindow, OffersTheVirtualBoardAndItsToolToTheShell)
{
    places.findPorts = [] { return std::vector<BoardPort>(); };
    Start({Write("a.py", "print('runs')")});
    Press(Qt::Key_F5);
    EXPECT_TRUE(MessageShows("No board is attached"));
    Answer("Attach Virtual Board");
    EXPECT_TRUE(WaitUntil([&] { return window().board().board().IsAttached(); }));
    EXPECT_EQ(Message(), "");
    window().worksheet().SetContent("mpremote devs");
    window().worksheet().RequestRun();
    EXPECT_TRUE(SheetShows("Virtual board"));
    Close();
    Start();
    EXPECT_TRUE(WaitUntil([&] { return window().board().board().IsAttached(); }))
        << "the choice is forgotten";
}

TEST_F(EditorWindow, AsksWhichOfTwoBoardsToUseAndUsesNoOther)
{
    BoardProcess first;
    BoardProcess second;
    const BoardPort ports[] = {{first.link(), "Pico", "1"}, {second.link(), "", "2"}};
    places.findPorts = [&] { return std::vector(std::begin(ports), std::end(ports)); };
    const QString file = Write("a.py", "open('mark', 'w').close()\nprint('marked')");
    Start({file});
    EXPECT_TRUE(MessageShows("Several boards are attached"));
    Answer(DescribePort(ports[1]));
    Press(Qt::Key_F5);
    EXPECT_TRUE(SheetShows("marked"));
    EXPECT_TRUE(fs::exists(second.files() / "mark"));
    Close();

    second.SetPlugged(false);
    places.findPorts = [&] { return std::vector{ports[0]}; };
    Start({file});
    auto* const corner = window().findChild<QToolButton*>("board");
    EXPECT_TRUE(corner->text().endsWith("is not attached"));
    Press(Qt::Key_F5);
    EXPECT_TRUE(MessageShows("The chosen board"));
    EXPECT_FALSE(fs::exists(first.files() / "mark"));
    Q_EMIT corner->menu()->aboutToShow();
    Action(DescribePort(ports[0]))->trigger();
    Press(Qt::Key_F5);
    EXPECT_TRUE(WaitUntil([&] { return fs::exists(first.files() / "mark"); }));
}

TEST_F(EditorWindow, RunsAProjectWithItsFilesIfTheUserWants)
{
    Write("p/helper.py", "print('helps')");
    Write("p/main.py", "import helper");
    Start({PathOf("p"), PathOf("p/main.py")});
    AttachBoard();
    Press(Qt::Key_F5);
    EXPECT_TRUE(SheetShows("ImportError"));
    Action("Run with Project Files")->trigger();
    Press(Qt::Key_F5);
    EXPECT_TRUE(SheetShows("helps"));
    Close();
    EXPECT_EQ(std::getenv("QUILP_MOUNT"), nullptr);
    Start();
    EXPECT_EQ(std::string(std::getenv("QUILP_MOUNT")), folder / "p");
    window().project().SetFolder({});
    EXPECT_EQ(std::getenv("QUILP_MOUNT"), nullptr);
}

TEST_F(EditorWindow, ShowsTheControlExactlyWhileThePluginOffersIt)
{
    const QString notes = Write("notes.txt", "");
    const QString python = Write("a.py", "");
    const auto main = Write("project/main.py", "").toStdString();
    Start({notes});
    const struct {
        const char* name;
        std::function<void()> act;
        bool isOffered;
    } steps[] = {
        {"a project", [&] { window().OpenFiles({PathOf("project")}); }, true},
        {"a project without a program", [&] { fs::remove(main); }, false},
        {"Python", [&] { window().OpenFiles({python}); }, true},
        {"no Python", [&] { window().OpenFiles({notes}); }, false},
        {"a target", [&] { window().project().SetTarget(python); }, true},
    };
    for (const auto& step : steps) {
        step.act();
        EXPECT_TRUE(WaitUntil([&] { return ControlIsShown() == step.isOffered; })) << step.name;
    }
}

TEST_F(EditorWindow, OpeningTheMenuOfAControlIsNotAClick)
{
    Start({Write("a.py", "while True: pass\n")});
    auto* const control = window().findChild<RunControl*>();
    const QPoint middle = control->rect().center();
    const std::pair<const char*, QPoint> presses[] = {{"its arrow", {control->width() - 4, 8}},
                                                      {"a long press", middle}};
    for (const auto& [name, at] : presses) {
        SCOPED_TRACE(name);
        bool opened = false;
        WhenAsked([&](QWidget& menu) {
            EXPECT_EQ(menu.actions()[0]->text(), "Run");
            menu.close();
            opened = true;
        });
        QTest::mousePress(control, Qt::LeftButton, {}, at);
        EXPECT_TRUE(WaitUntil([&] { return opened; }));
        QTest::mouseRelease(control, Qt::LeftButton, {}, middle);
        QCoreApplication::processEvents();
        EXPECT_FALSE(control->isDown());
        EXPECT_TRUE(Runtime::Current().IsIdle());
    }
}

TEST_F(EditorWindow, SavesTheDocumentBeforeACommandUnlessTheUserForbidsIt)
{
    Start({Write("a.py", "print(1)\n")});
    AttachBoard();
    Type("print('new')#");
    const auto choose = [&](const QString& label, const std::function<void()>& then) {
        WhenAsked([label, then](QWidget& menu) {
            for (auto* const action : menu.actions()) {
                if (action->text() == label) {
                    action->trigger();
                }
            }
            menu.close();
            then();
        });
        Action("Show Command Menu")->trigger();
    };
    choose("Stop ", [] {});
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    EXPECT_EQ(Read("a.py"), "print(1)\n");
    Write("a.py", "theirs, longer\n");
    choose("Run", [this] { WhenAskedPress(QMessageBox::Cancel); });
    EXPECT_TRUE(Runtime::Current().IsIdle()) << "the other program's version runs";
    choose("Run", [this] { WhenAskedPress(QMessageBox::Save); });
    EXPECT_EQ(Read("a.py"), "print('new')#print(1)\n");
    ASSERT_TRUE(SheetShows("new\n"));

    Action("Save before Commands")->setChecked(true);  // As when the menu opens.
    Action("Save before Commands")->setChecked(false);
    editor().GoToLine(1);
    Type("print('unsaved');");
    Press(Qt::Key_F5);
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    EXPECT_EQ(Sheet().find("unsaved"), std::string::npos);
    EXPECT_EQ(Read("a.py"), "print('new')#print(1)\n");
}

TEST_F(EditorWindow, ANewDocumentIsNamedBeforeItRunsAndMayHaveAnyName)
{
    const std::string name = "an odd' \\ #name.py";
    Start();
    AttachBoard();
    window().project().SetTarget(Write("target.py", "print('target')"));
    Type("print(6 * 7); 1/0");
    WhenAsked([&](QWidget& dialog) {
        dialog.findChild<QLineEdit*>()->setText(PathOf(name));
        qobject_cast<QDialog*>(&dialog)->accept();
    });
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("ZeroDivisionError"));
    EXPECT_TRUE(Sheet().starts_with("42\n")) << Sheet();
    EXPECT_TRUE(SheetShows("File " + (folder / name) + ", line 1"));
    EXPECT_EQ(Read(name), "print(6 * 7); 1/0");
}

TEST_F(EditorWindow, ChangesShortcutsButRefusesConflicts)
{
    Start({Write("a.py", "")});
    WhenAsked([](QWidget& dialog) {
        auto* const edit = dialog.findChildren<QKeySequenceEdit*>()[0];
        auto* const ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        for (const char* taken : {"Shift+F5", "Ctrl+S", "Ctrl+Left", "Return"}) {
            edit->setKeySequence(QKeySequence(taken));
            EXPECT_FALSE(ok->isEnabled()) << taken;
        }
        edit->setKeySequence(QKeySequence("Ctrl+R"));
        ok->click();
    });
    Action("Shortcuts…")->trigger();
    EXPECT_EQ(Action("Run")->shortcut(), QKeySequence("Ctrl+R"));
    Press(Qt::Key_F1);
    const QString help = window().findChild<QTextBrowser*>()->toPlainText();
    for (const char* row :
         {"Run\\s+Ctrl\\+R\n", "Run Line or Selection\\s+Ctrl\\+Return\n", "WIP"}) {
        EXPECT_TRUE(help.contains(QRegularExpression(row))) << row;
    }
    Close();
    Start();
    EXPECT_EQ(Action("Run")->shortcut(), QKeySequence("Ctrl+R"));
}

TEST_F(EditorWindow, TheShortcutsDialogMayBeDestroyedWhileItIsOpen)
{
    Shortcuts shortcuts({}, {});
    auto dialog = std::make_unique<ShortcutsDialog>(
        shortcuts, std::vector<RegisteredCommand>{{"QuilpRun", ""}}, nullptr);
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    QTest::keyClick(dialog->findChild<QKeySequenceEdit*>(), Qt::Key_F9);
    dialog.reset();
    EXPECT_EQ(shortcuts.Shortcut("QuilpRun"), QKeySequence());
}

// Runs in the second process of the next test.
TEST_F(EditorWindow, DISABLED_SecondProcess)
{
    const std::string root = qEnvironmentVariable("QUILP_TEST_ROOT").toStdString();
    places.folders = {root + "/config", root + "/data", root + "/state"};
    Start({QString::fromStdString(root + "/theirs.py")});
    Type("saved ");
    ASSERT_TRUE(WaitUntil([&] { return HasCopy(root + "/state/recovery"); }));
    ASSERT_TRUE(window().documents().saver().SaveFront());
    ASSERT_TRUE(WaitUntil([&] { return !HasCopy(root + "/state/recovery"); }));
    Type("unsaved ");
    ASSERT_TRUE(WaitUntil([&] { return HasCopy(root + "/state/recovery"); }));
    std::puts("ready");
    std::fflush(stdout);
    WaitUntil([] { return false; });  // Until it is killed.
}

TEST_F(EditorWindow, TwoProcessesDoNotInterfereAndTheTextOfAKilledOneIsRecovered)
{
    Write("config/plugins.settings", "OtherPlugin -kept\n");
    const QString theirs = Write("theirs.py", "old\n");
    const QString mine = Write("mine.py", "old\n");
    BackgroundProgram other({"/proc/self/exe", "--gtest_also_run_disabled_tests",
                             "--gtest_filter=EditorWindow.DISABLED_SecondProcess"},
                            {"QUILP_TEST_ROOT=" + folder.path()});
    ASSERT_TRUE(other.WaitForOutput("ready")) << other.output();
    Start({mine});
    EXPECT_EQ(Message(), "") << "a running editor's text is not to be recovered";
    Write("config/plugins.settings", "OtherPlugin -kept\nThird -new\n");
    other.Signal(SIGKILL);
    ASSERT_TRUE(other.WaitForExit(std::chrono::seconds(20)));
    Type("mine ");
    EndBy([this] { window().QuitWithoutAsking(); });
    const auto settings = Read("config/plugins.settings");
    EXPECT_TRUE(settings.starts_with("OtherPlugin -kept\nThird -new\n")) << settings;

    Write("theirs.py", "changed meanwhile\n");
    Start();
    EXPECT_TRUE(MessageShows("theirs.py") && MessageShows("mine.py"));
    window().OpenFiles({theirs});
    Type("typed ");  // The recovered text of the same file gets its own tab.
    const QStringList texts{"mine old\n", "typed changed meanwhile\n", "saved unsaved old\n"};
    const auto expectTexts = [&] {  // Leaves the last one in front.
        auto& documents = window().documents();
        EXPECT_EQ(documents.count(), texts.size());
        for (const auto& text : texts) {
            documents.setCurrentIndex(0);
            for (int i = 1; i < documents.count() && editor().Content() != text; ++i) {
                documents.setCurrentIndex(i);
            }
            EXPECT_EQ(editor().Content().toStdString(), text.toStdString());
            EXPECT_TRUE(documents.Front()->IsModified());
        }
    };
    Answer("Recover");
    expectTexts();
    EndBy([this] { window().QuitWithoutAsking(); });
    Start();
    Answer("Recover");
    window().documents().setCurrentIndex(0);
    Action("Undo")->trigger();
    EXPECT_EQ(editor().Content(), "old\n");
    Action("Redo")->trigger();
    expectTexts();
    WhenAskedPress(QMessageBox::Save);  // Overwrites the other program's change.
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read("theirs.py"), "saved unsaved old\n");
    window().documents().CloseAll();
    Close();
    Start();
    EXPECT_EQ(Message(), "") << "the text is offered twice";
}

TEST_F(EditorWindow, FollowsAFileThatAnotherProgramChanges)
{
    Start({Write("a.py", "one\n")});
    Write("a.py", "one and two\n");
    ASSERT_TRUE(WaitUntil([&] { return editor().Content() == "one and two\n"; }));
    EXPECT_FALSE(window().documents().Front()->IsModified());

    Type("mine ");
    Write("a.py", "theirs, which is longer\n");
    ASSERT_TRUE(MessageShows("changed"));
    EXPECT_EQ(editor().Content(), "mine one and two\n");
    for (int i = 0; i < 2; ++i) {  // The question is repeated until it is answered.
        WhenAskedPress(QMessageBox::Cancel);
        Press(Qt::Key_F5);
        EXPECT_EQ(Read("a.py"), "theirs, which is longer\n");
    }
    Answer("Keep My Changes");
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read("a.py"), "mine one and two\n");
    EXPECT_EQ(Message(), "");

    Type("again ");  // The size differs, because the clock of files may not have ticked.
    Write("a.py", "theirs, once more\n");
    ASSERT_TRUE(MessageShows("changed"));
    Answer("Reload");
    EXPECT_EQ(editor().Content(), "theirs, once more\n");

    fs::remove(folder / "a.py");
    ASSERT_TRUE(WaitUntil([&] { return window().documents().Front()->IsModified(); }));
    EXPECT_TRUE(WaitUntil([&] { return HasCopy(places.folders.state + "/recovery"); }));
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read("a.py"), "theirs, once more\n");

    // The result of a check arrives when the document has just been closed.
    auto& queue = Runtime::Current().queue();
    queue.Drain();
    Write("a.py", "too late\n");
    window().documents().CheckDisk();
    pollfd arrived{queue.wakeFd(), POLLIN, 0};
    ASSERT_EQ(poll(&arrived, 1, 20'000), 1);
    ASSERT_TRUE(window().documents().Close(0));
    queue.Drain();
}

TEST_F(EditorWindow, SavesAsANameWithoutAnExtension)
{
    Start({Write("Makefile", "all:\n")});
    WhenAsked([this](QWidget& dialog) {
        auto& files = dynamic_cast<QFileDialog&>(dialog);
        files.selectFile(PathOf("GNUmakefile"));
        static_cast<QDialog&>(files).accept();
    });
    EXPECT_TRUE(window().documents().saver().SaveFrontAs());
    EXPECT_EQ(Read("GNUmakefile"), "all:\n");
}

TEST_F(EditorWindow, KeepsAnEncodingUnlessACharacterNeedsUtf8)
{
    const std::string latin("x = '\xE9'\r\n\0y\n", 12);
    Start({Write("latin.py", latin)});
    Type("z");
    Press(Qt::Key_Backspace);
    ASSERT_TRUE(window().documents().saver().SaveFront());
    EXPECT_EQ(Read("latin.py"), latin);
    editor().insert("€");
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(window().documents().saver().SaveFront());
    EXPECT_EQ(Read("latin.py"), latin);
    WhenAskedPress(QMessageBox::Save);
    EXPECT_TRUE(window().documents().saver().SaveFront());
    EXPECT_TRUE(Read("latin.py").starts_with("€x = 'é'\r\n"));
}

TEST_F(EditorWindow, AttachesAndDetachesTheVirtualBoard)
{
    Start({Write("a.py", "")});
    const auto* const shown = window().findChild<QToolButton*>("board");
    Action("Attach Virtual Board")->trigger();
    EXPECT_TRUE(WaitUntil([&] { return shown->text() == "Virtual board"; }));
    Action("Detach Virtual Board")->trigger();
    EXPECT_NE(shown->text(), "Virtual board");
    AttachBoard();
    const fs::path link = std::getenv("QUILP_VIRTUAL_BOARD");
    BoardLine line(fs::read_symlink(link));
    fs::remove_all(link.parent_path());
    line.Send("import machine; machine.reset()\r");
    EXPECT_TRUE(
        MessageShows("The virtual board has stopped: virtual-board: cannot create the link"));
    EXPECT_NE(shown->text(), "Virtual board");
}

TEST_F(EditorWindow, ReportsWhatCannotBeOpenedOrSavedAndKeepsTheText)
{
    Start({Write("gone/a.py", "old\n"), PathOf("missing.py"), PathOf("")});
    EXPECT_TRUE(MessageShows("missing.py"));
    EXPECT_EQ(window().documents().count(), 1);
    Type("new ");
    fs::remove_all(folder / "gone");
    EXPECT_FALSE(window().documents().saver().SaveFront());
    EXPECT_TRUE(MessageShows("cannot create a file"));
    EXPECT_EQ(editor().Content(), "new old\n");
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(window().close());
    WhenAskedPress(QMessageBox::Discard);
    Close();
}

TEST_F(EditorWindow, TabsAreClosedByAMiddleClickAndByTheirMenu)
{
    const QString first = Write("a.py", "");
    Start({first, Write("b.py", ""), Write("c.py", ""), Write("d.py", "")});
    auto& documents = window().documents();
    auto& bar = *documents.tabBar();
    QTest::mouseClick(&bar, Qt::MiddleButton, {}, bar.tabRect(1).center());
    ASSERT_EQ(documents.count(), 3);
    const auto choose = [&](const QString& label) {
        bool isChosen = false;
        WhenAsked([&](QWidget& menu) {
            for (auto* const action : menu.actions()) {
                if (action->text().remove('&') == label) {
                    action->trigger();
                }
            }
            menu.close();
            isChosen = true;
        });
        const QPoint at = bar.tabRect(0).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, bar.mapToGlobal(at));
        QApplication::sendEvent(&bar, &event);
        EXPECT_TRUE(WaitUntil([&] { return isChosen; }));
    };
    choose("Copy Path");
    EXPECT_EQ(QApplication::clipboard()->text(), first);
    choose("Close Others");
    EXPECT_EQ(documents.Paths(), QStringList(first));
    choose("Close");
    EXPECT_EQ(documents.count(), 0);
}

TEST_F(EditorWindow, RestoresTheLastSession)
{
    const QString first = Write("a.py", "");
    const QString second = Write("b.txt", "1\n2\n3\n");
    const QString third = Write("\xFF.py", "not UTF-8");
    Start({first, third, second});
    editor().GoToLine(3);
    window().resize(700, 500);
    window().project().SetTarget(first);
    window().worksheet().Append("kept\n");
    Action("Wrap Lines")->setChecked(true);
    window().OpenFiles({first});
    Press(Qt::Key_F8);
    ASSERT_TRUE(WaitUntil([] { return DeviceTable() != nullptr; }));
    DeviceTable()->window()->setGeometry(40, 50, 333, 444);
    DeviceTable()->window()->close();
    for (int i = 0; i < 3; ++i) {
        Action("Zoom In")->trigger();
    }
    const auto sessionHas = [&](const std::string& text) {
        return Read("config/editor.ini").find(text) != std::string::npos;
    };
    EXPECT_TRUE(WaitUntil([&] { return sessionHas("zoom=3\n") && sessionHas("b.txt"); }))
        << "a crash loses the settings: " << Read("config/editor.ini");
    EXPECT_TRUE(WaitUntil([&] { return Read("state/worksheet.txt") == "kept\n"; }));
    Close();
    Start();
    EXPECT_EQ(window().documents().Paths(), (QStringList{first, third, second}));
    EXPECT_EQ(window().documents().Front()->path(), first.toStdString());
    EXPECT_EQ(window().size(), QSize(700, 500));
    EXPECT_EQ(Sheet(), "kept\n");
    window().OpenFiles({third});
    EXPECT_EQ(editor().Content(), "not UTF-8");
    EXPECT_TRUE(window().worksheet().wraps());
    window().OpenFiles({second});
    EXPECT_EQ(editor().CaretLine(), 3);
    EXPECT_EQ(editor().SendScintilla(QsciScintilla::SCI_GETZOOM), 3);
    EXPECT_TRUE(ControlIsShown()) << "the target is lost";
    Press(Qt::Key_F8);
    ASSERT_TRUE(WaitUntil([] { return DeviceTable() != nullptr; }));
    EXPECT_EQ(DeviceTable()->window()->size(), QSize(333, 444));
}

TEST_F(EditorWindow, MenusAndTheStatusBarShowWhatApplies)
{
    Start({Write("main.py", "")});
    for (const auto* const label : window().statusBar()->findChildren<QLabel*>()) {
        EXPECT_FALSE(label->text().contains("target", Qt::CaseInsensitive)) << "there is none";
    }
    EXPECT_EQ(Action("Upload as main.py")->shortcut(), QKeySequence("Shift+F6"));
    const auto* const redo = editor().standardCommands()->find(QsciCommand::Redo);
    EXPECT_EQ(Action("Redo")->shortcut(), QKeySequence(redo->key())) << "in the context menu";
    EXPECT_TRUE(Action("Dark")->actionGroup()->isExclusive()) << "no radio marks";
}

TEST_F(EditorWindow, TheWorksheetLeavesRoomForTheDocumentsInASmallWindow)
{
    Start({Write("a.py", "")});
    window().resize(500, 360);
    QCoreApplication::processEvents();
    const int sheet = window().worksheet().height();
    EXPECT_LE(sheet, window().centralWidget()->height() * 3 / 10);
    EXPECT_GT(sheet, 30);
}

TEST_F(EditorWindow, RenamesItsOwnFilesThatItCannotRead)
{
    const std::string damaged("\0\xFF binary", 9);
    const auto files = {"config/plugins.settings", "config/editor.ini", "state/worksheet.txt"};
    for (const char* name : files) {
        Write(name, damaged);
    }
    Start();
    for (const char* name : files) {
        EXPECT_TRUE(MessageShows(fs::path(name).filename().string() + ".unreadable"));
        EXPECT_EQ(Read(std::string(name) + ".unreadable"), damaged);
    }
}

TEST_F(EditorWindow, SurvivesAPluginThatThrowsOrSendsInvalidMessages)
{
    Start({Write("a.py", "")}, QUILP_TEST_BIN "/throwing_plugin.so");
    EXPECT_TRUE(MessageShows("message 104"));
    window().findChild<RunControl*>()->click();
    EXPECT_TRUE(MessageShows("message 100 after query 1")) << "several queries at the start";
    Action("Show Command Menu")->trigger();
    EXPECT_TRUE(MessageShows("message 101"));
    Press(Qt::Key_F8);
    EXPECT_TRUE(MessageShows("no Device window"));
    Runtime::Current().handlers.warning("A program hangs.");
    EXPECT_TRUE(MessageShows("A program hangs."));
    Type("still here");
    EXPECT_TRUE(window().documents().saver().SaveFront());
    EXPECT_EQ(Read("a.py"), "still here");
}

TEST_F(EditorWindow, ExitsWithinASecondWhileTheBoardPrints)
{
    const auto before = CurrentHoldings();
    Start({Write("loop.py", kEndless)});
    AttachBoard();
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("round"));
    const auto begin = std::chrono::steady_clock::now();
    Close();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    EXPECT_FALSE(SettledHoldings(before).children);
}

TEST_F(EditorWindow, AsksBeforeItShowsALineThatIsSlowToEdit)
{
    const std::string slow(kMaxSmoothLineLength + 1, '1');
    const QString path = Write("data.py", "x = 1\n" + slow);
    const QString other = Write("other.py", slow);
    Start({path});
    EXPECT_EQ(window().documents().Paths(), QStringList());
    EXPECT_TRUE(Message().starts_with("Line 2 of " + path.toStdString())) << Message();
    window().OpenFiles({other, path});
    EXPECT_TRUE(MessageShows(other.toStdString() + ", " + path.toStdString()));
    Answer("Open Anyway");
    EXPECT_EQ(window().documents().Paths(), (QStringList{other, path}));

    window().OpenFiles({Write("small.py", "x = 1\n")});
    const QString text = "y\n" + QString::fromStdString(slow);
    QApplication::clipboard()->setText(text);
    editor().setFocus();
    Action("Paste")->trigger();
    EXPECT_TRUE(MessageShows("too long"));
    EXPECT_EQ(editor().Content(), "x = 1\n") << "the line was pasted";
    Answer("Insert Anyway");
    EXPECT_EQ(editor().Content(), text + "x = 1\n");
    Action("Undo")->trigger();
    ASSERT_TRUE(window().documents().saver().SaveFront());
    auto& sheet = window().worksheet();
    sheet.setFocus();
    Action("Paste")->trigger();
    EXPECT_EQ(sheet.Content().remove('\n').size(), text.size() - 1);
    EXPECT_EQ(sheet.lines(), 2 + kMaxSmoothLineLength / OutputText::kMaxLineLength);

    Write("small.py", slow);
    EXPECT_TRUE(MessageShows("too long"));
    EXPECT_EQ(editor().Content(), "x = 1\n") << "the changed file was loaded";
}

TEST_F(EditorWindow, FollowsLinksOfTheWorksheetAndRunsItsLines)
{
    Write("board/lib/x.py", "1\n2\n3\n");
    Write("project/notes.txt", "");
    Start({Write("a.py", ""), PathOf("project")});
    auto& sheet = window().worksheet();
    sheet.SetContent("pwd; echo \"two words\"");
    sheet.setFocus();
    Press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(SheetShows("\"two words\"\n" + (folder / "project") + "\ntwo words\n")) << Sheet();
    sheet.Append("  File \"/lib/x.py\", line 3, in f\n");
    Press(Qt::Key_F4);
    EXPECT_EQ(window().documents().Front()->path(), folder / "board/lib/x.py");
    EXPECT_EQ(editor().CaretLine(), 3);
}

TEST_F(EditorWindow, TheEditMenuActsOnTheFieldThatHasTheFocus)
{
    Start({Write("a.py", "word\n")});
    Action("Find…")->trigger();
    QTest::keyClicks(QApplication::focusWidget(), "other");
    Action("Select All")->trigger();
    Action("Cut")->trigger();
    EXPECT_EQ(editor().Content(), "word\n");
    window().worksheet().setFocus();
    Action("Paste")->trigger();
    EXPECT_EQ(Sheet(), "other");

    editor().setFocus();
    Action("Replace…")->trigger();
    QTest::keyClicks(QApplication::focusWidget(), "w");
    Answer("Replace &all");
    EXPECT_EQ(editor().Content(), "ord\n");
    QApplication::focusWidget()->parentWidget()->findChild<QPushButton*>()->setFocus();
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor().Content(), "word\n") << "while a button of the find bar has the focus";
}

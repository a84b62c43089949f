// The editor and boards: commands, the prompt, and files on the board.

#include "editor_window_fixture.h"

#include "board_actions.h"
#include "board_files_dialog.h"
#include "board_process.h"
#include "control_tool_bar.h"
#include "text_editor.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include <fcntl.h>

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

}  // namespace

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
    const auto& sheet = window().worksheet();
    EXPECT_TRUE(WaitUntil(
        [&] { return sheet.SendScintilla(QsciScintilla::SCI_GETCURRENTPOS) == sheet.length(); }));
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

// The editor as its user meets it: the real window, the real plug-in, the real tool.

#include "editor_window_fixture.h"

#include "appearance.h"
#include "file_bytes.h"
#include "leaks.h"
#include "program.h"
#include "recovery.h"
#include "run_control.h"
#include "shortcuts_dialog.h"
#include "table_widget.h"
#include "text_editor.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QUrl>
#include <QWindow>

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <set>

namespace {

constexpr const char* kFails = "def half(number):\n    return 1 / number\n\nhalf(0)\n";

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

bool DeviceTableHas(int rows)
{
    return WaitUntil([rows] {
        const auto* const table = DeviceTable();
        return table != nullptr && table->model()->rowCount() == rows;
    });
}

void DropOn(QWidget& over, const QString& path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    const QPoint at(20, over.height() - 5);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    for (QEvent* const event :
         {static_cast<QEvent*>(&enter), static_cast<QEvent*>(&move), static_cast<QEvent*>(&drop)}) {
        QCoreApplication::sendEvent(&over, event);
    }
}

// Whether text lies in a folder of copies; its lock is empty.
bool HoldsACopy(const std::string& folder)
{
    std::error_code error;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, error)) {
        const bool isBeingWritten = entry.path().filename().string().starts_with(kTemporaryPrefix);
        if (entry.is_regular_file(error) && entry.file_size(error) > 0 && !isBeingWritten) {
            return true;
        }
    }
    return false;
}

QStringList Labels(const QWidget& menu)
{
    QStringList labels;
    for (const auto* const action : menu.actions()) {
        labels.append(action->text());
    }
    return labels;
}

}  // namespace

TEST_F(EditorWindow, MakesTheWholeRound)
{
    Start({Write("fails.py", kFails)});
    AttachBoard();
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("ZeroDivisionError"));
    Press(Qt::Key_F4);
    EXPECT_EQ(editor().CaretLine(), 4);
    Press(Qt::Key_F4);
    EXPECT_EQ(editor().CaretLine(), 2);

    window().OpenFiles({Write("loop.py", "while True:\n    print('round')\n")});
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("round"));
    Press(Qt::Key_F5, Qt::ShiftModifier);
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));

    Press(Qt::Key_F6);
    ASSERT_TRUE(WaitUntil([&] { return !ReadFile(folder / "board/loop.py").empty(); }));
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    Press(Qt::Key_F8);
    ASSERT_TRUE(DeviceTableHas(1));
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    DropOn(*DeviceTable()->viewport(), Write("data.csv", "1,2\n"));
    ASSERT_TRUE(DeviceTableHas(2));
    EXPECT_EQ(ReadFile(folder / "board/data.csv"), "1,2\n");
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    const auto deleted = DeviceTable()->model()->index(0, 0).data().toString().toStdString();
    DeviceTable()->SelectRow(0, false);
    QTest::keyClick(DeviceTable(), Qt::Key_Backspace, Qt::ControlModifier);
    ASSERT_TRUE(DeviceTableHas(1));
    EXPECT_FALSE(std::filesystem::exists(folder / "board/" + deleted));
}

TEST_F(EditorWindow, ShowsTheControlExactlyWhileThePluginOffersIt)
{
    const QString notes = Write("notes.txt", "");
    const QString python = Write("a.py", "");
    const QString project = QString::fromStdString(folder / "project");
    std::filesystem::create_directory(folder / "project");
    Start({notes});
    EXPECT_EQ(Controls(), QStringList());
    Write("project/main.py", "");
    window().OpenFiles({project});
    EXPECT_EQ(Controls(), QStringList("Run"));
    std::filesystem::remove(folder / "project/main.py");
    EXPECT_TRUE(WaitUntil([&] { return Controls().isEmpty(); }));
    window().OpenFiles({python});
    EXPECT_EQ(Controls(), QStringList("Run"));
    window().OpenFiles({notes});
    EXPECT_EQ(Controls(), QStringList());
    window().project().SetTarget(python);
    EXPECT_EQ(Controls(), QStringList("Run"));
    window().project().SetTarget({});
    EXPECT_EQ(Controls(), QStringList());
    window().project().SetTarget(notes);
    EXPECT_EQ(Controls(), QStringList("Run"));  // The plug-in offers it for any target.
}

TEST_F(EditorWindow, OpensThePopUpUnderItsControlInEveryState)
{
    const QString python = Write("boot.py", "");
    const QString notes = Write("notes.txt", "");
    Start({python});
    struct Row {
        QString document;
        QString target;
        QStringList labels;
    };
    const QStringList always{"Stop ", "List ", "Status ", "Add upload command to worksheet ",
                             "Open Device window"};
    const Row rows[] = {
        {python,
         {},
         {"Run", "Stop ", "Upload as main.py", "Upload ", always[1], always[2], always[3],
          always[4]}},
        {notes,
         python,
         {"Run boot.py", "Stop ", "Upload boot.py as main.py", "Upload  boot.py", always[1],
          always[2], always[3], always[4]}},
        {notes, {}, always},
    };
    for (const auto& row : rows) {
        window().OpenFiles({row.document});
        window().project().SetTarget(row.target);
        auto* const control = window().findChild<RunControl*>();
        const bool offered = !Controls().isEmpty();
        WhenAsked([&](QWidget& menu) {
            EXPECT_EQ(Labels(menu), row.labels);
            if (offered) {
                const auto corner = control->mapToGlobal(QPoint(0, control->height()));
                EXPECT_EQ(menu.pos(), corner + QPoint(0, 6));
                EXPECT_EQ(menu.actions()[0]->shortcut(), QKeySequence("F5"));
            }
            menu.close();
        });
        if (offered) {
            QTest::mouseClick(control, Qt::LeftButton, {},
                              QPoint(control->width() - 4, control->height() / 2));
            EXPECT_TRUE(WaitUntil([] { return QApplication::activePopupWidget() == nullptr; }));
            QCoreApplication::processEvents();
        } else {
            Action("Show Command Menu")->trigger();
        }
    }
}

TEST_F(EditorWindow, AsksForThePopUpInEveryWay)
{
    Start({Write("a.py", "while True: pass\n")});
    auto* const control = window().findChild<RunControl*>();
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"a press that lasts",
         [&] {
             QTest::mousePress(control, Qt::LeftButton, {}, {8, 8});
         }},
        {"the arrow key", [&] { QTest::keyClick(control, Qt::Key_Down); }},
        {"the right button",
         [&] {
             QContextMenuEvent event(QContextMenuEvent::Mouse, {8, 8},
                                     control->mapToGlobal(QPoint(8, 8)));
             QCoreApplication::sendEvent(control, &event);
         }},
    };
    for (const auto& [name, ask] : ways) {
        bool opened = false;
        WhenAsked([&opened](QWidget& menu) {
            opened = Labels(menu).contains("Open Device window");
            menu.close();
        });
        ask();
        EXPECT_TRUE(WaitUntil([&] { return opened; })) << name;
        QTest::mouseRelease(control, Qt::LeftButton, {}, {8, 8});
        QCoreApplication::processEvents();
        EXPECT_FALSE(control->isDown()) << name;
        EXPECT_TRUE(Runtime::Current().IsIdle()) << name << " is no click";
    }
}

TEST_F(EditorWindow, SavesForAnItemOfThePopUpOnceItIsChosen)
{
    const QString path = Write("a.py", "old\n");
    Start({path});
    Type("new ");
    const auto choose = [&](const QString& label, std::optional<int> answer = std::nullopt) {
        WhenAsked([this, label, answer](QWidget& menu) {
            for (auto* const action : menu.actions()) {
                if (action->text() == label) {
                    action->trigger();
                }
            }
            menu.close();
            if (answer) {
                WhenAskedPress(*answer);
            }
        });
        Action("Show Command Menu")->trigger();
    };
    choose("nothing");
    choose("Stop ");
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    EXPECT_EQ(ReadFile(path.toStdString()), "old\n");
    Write("a.py", "theirs, longer\n");
    choose("Run", QMessageBox::Cancel);
    EXPECT_TRUE(Runtime::Current().IsIdle()) << "theirs runs";
    choose("Run", QMessageBox::Save);
    EXPECT_EQ(ReadFile(path.toStdString()), "new old\n");
    EXPECT_FALSE(Runtime::Current().IsIdle());
}

TEST_F(EditorWindow, SavesTheDocumentBeforeACommandUnlessToldNotTo)
{
    const QString path = Write("a.py", "print(1)\n");
    Start({path});
    AttachBoard();
    Type("print('new')#");
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("new\n"));
    EXPECT_EQ(ReadFile(path.toStdString()), "print('new')#print(1)\n");
    Action("Save before Commands")->setChecked(true);
    Action("Save before Commands")->setChecked(false);
    editor().GoToLine(1);
    Type("print('unsaved');");
    Press(Qt::Key_F5);
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    EXPECT_EQ(Sheet().find("unsaved"), std::string::npos);
    EXPECT_EQ(ReadFile(path.toStdString()), "print('new')#print(1)\n");
    WhenAskedPress(QMessageBox::Discard);
    EXPECT_TRUE(Close());
}

TEST_F(EditorWindow, ANewTextGetsANameBeforeItRuns)
{
    Start();
    AttachBoard();
    Type("print(6 * 7)");
    WhenAsked([this](QWidget& dialog) {
        auto* const name = dialog.findChild<QLineEdit*>();
        EXPECT_EQ(name->text(), "untitled_1") << "a name with a blank could not run";
        name->setText(PathOf("answer.py"));
        qobject_cast<QDialog*>(&dialog)->accept();
    });
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("42\n"));
    EXPECT_EQ(ReadFile(folder / "answer.py"), "print(6 * 7)");
    EXPECT_EQ(Controls(), QStringList("Run"));
    ASSERT_TRUE(WaitUntil([] { return Runtime::Current().IsIdle(); }));
    window().project().SetTarget(PathOf("answer.py"));
    window().documents().New();
    window().worksheet().MakeEmpty();
    Press(Qt::Key_F5);
    EXPECT_TRUE(SheetShows("42\n")) << "the target runs while there is nothing to save";
}

TEST_F(EditorWindow, ChangesShortcutsButRefusesClashes)
{
    Start({Write("a.py", "")});
    WhenAsked([](QWidget& dialog) {
        const auto edits = dialog.findChildren<QKeySequenceEdit*>();
        ASSERT_EQ(edits.size(), 5);
        auto* const problem = dialog.findChild<QLabel*>("problem");
        const auto buttons = dialog.findChildren<QPushButton*>();
        const auto ok = std::ranges::find_if(
            buttons, [](const auto* button) { return button->text().contains("OK"); });
        ASSERT_NE(ok, buttons.end());
        // Another command's, the editor's own, the text's.
        for (const char* taken : {"Shift+F5", "Ctrl+S", "Ctrl+Left", "Return"}) {
            edits[0]->setKeySequence(QKeySequence(taken));
            EXPECT_FALSE((*ok)->isEnabled()) << taken;
            EXPECT_FALSE(problem->text().isEmpty()) << taken;
        }
        edits[0]->setKeySequence(QKeySequence("Ctrl+R"));
        EXPECT_TRUE((*ok)->isEnabled()) << problem->text().toStdString();
        (*ok)->click();
    });
    Action("Shortcuts…")->trigger();
    EXPECT_EQ(Action("Run")->shortcut(), QKeySequence("Ctrl+R"));
    ASSERT_TRUE(Close());
    Start();
    EXPECT_EQ(Action("Run")->shortcut(), QKeySequence("Ctrl+R"));
    EXPECT_EQ(Action("Stop")->shortcut(), QKeySequence("Shift+F5"));
}

// As when the program ends meanwhile.
TEST_F(EditorWindow, TheShortcutsDialogMayGoWhileItIsOpen)
{
    Shortcuts shortcuts({}, {});
    auto dialog = std::make_unique<ShortcutsDialog>(
        shortcuts, std::vector<RegisteredCommand>{{"QuilpRun", ""}, {"QuilpStop", ""}}, nullptr);
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    auto* const edit = dialog->findChild<QKeySequenceEdit*>();
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_F9);
    dialog.reset();
    EXPECT_EQ(shortcuts.Shortcut("QuilpRun"), QKeySequence());
}

// The other process of the next test.
TEST_F(EditorWindow, DISABLED_TypesAndIsKilledOnceTheTextIsSafe)
{
    const std::string root = qEnvironmentVariable("QUILP_TEST_ROOT").toStdString();
    places.folders.state = root + "/state";
    const std::string copies = root + "/state/recovery";
    Start({QString::fromStdString(root + "/saved.py")});
    Type("new ");
    ASSERT_TRUE(WaitUntil([&] { return HoldsACopy(copies); }));
    ASSERT_TRUE(window().documents().SaveFront());
    ASSERT_TRUE(WaitUntil([&] { return !HoldsACopy(copies); }));
    window().OpenFiles({QString::fromStdString(root + "/a.py")});
    Type("new ");
    ASSERT_TRUE(WaitUntil([&] { return HoldsACopy(copies); }));
    raise(SIGKILL);
}

TEST_F(EditorWindow, OffersUnsavedTextAgainAfterTheProgramWasKilled)
{
    const QString path = Write("a.py", "old\n");
    Write("saved.py", "");
    const auto killed =
        RunProgram({"/proc/self/exe", "--gtest_also_run_disabled_tests",
                    "--gtest_filter=EditorWindow.DISABLED_TypesAndIsKilledOnceTheTextIsSafe"},
                   {"QUILP_TEST_ROOT=" + folder.path()});
    ASSERT_EQ(killed.status, 128 + SIGKILL) << killed.output;
    Write("a.py", "theirs, meanwhile\n");
    Start({path});
    ASSERT_TRUE(Message().endsWith(": a.py.")) << Message().toStdString();
    Type("typed ");
    Answer("Recover");
    ASSERT_EQ(window().documents().count(), 2) << "what is typed meanwhile keeps its tab";
    EXPECT_EQ(editor().Content(), "new old\n");
    EXPECT_TRUE(window().documents().Front()->IsModified());
    WhenAskedPress(QMessageBox::Save);  // Over theirs.
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(ReadFile(path.toStdString()), "new old\n");
    ASSERT_TRUE(window().documents().Close(1));
    EXPECT_EQ(editor().Content(), "typed theirs, meanwhile\n");
    WhenAskedPress(QMessageBox::Discard);
    ASSERT_TRUE(Close());
    Start({path});
    EXPECT_EQ(Message(), QString());  // Nothing is offered twice.
}

TEST_F(EditorWindow, RecoversTwoTextsOfOneFileAndLosesNeither)
{
    const QString path = Write("a.py", "old\n");
    const std::string root = places.folders.state + "/recovery";
    for (const char* text : {"one\n", "two\n"}) {
        RecoveryStore editorThatEnds(root);
        ASSERT_TRUE(editorThatEnds.Keep("1", {path.toStdString(), TextEncoding::Utf8, text}));
    }
    for (int starts = 0; starts < 2; ++starts) {  // The second after another end.
        Start({path});
        Answer("Recover");
        ASSERT_EQ(window().documents().count(), 2);
        std::set<QString> texts{editor().Content()};
        window().documents().setCurrentIndex(0);
        texts.insert(editor().Content());
        EXPECT_EQ(texts, (std::set<QString>{"one\n", "two\n"}));
        Action("Undo")->trigger();
        EXPECT_EQ(editor().Content(), "old\n");
        Action("Redo")->trigger();
        EXPECT_TRUE(RunUntilEnd([this] { window().QuitWithoutAsking(); }));
        End();
    }
}

TEST_F(EditorWindow, FollowsAFileThatAnotherProgramChanges)
{
    const QString path = Write("a.py", "one\n");
    Start({path});
    Write("a.py", "one and two\n");
    ASSERT_TRUE(WaitUntil([&] { return editor().Content() == "one and two\n"; }));
    EXPECT_FALSE(window().documents().Front()->IsModified());

    Type("mine ");
    Write("a.py", "theirs, which is longer\n");
    ASSERT_TRUE(WaitUntil([&] { return !Message().isEmpty(); }));
    EXPECT_EQ(editor().Content(), "mine one and two\n");
    for (int i = 0; i < 2; ++i) {  // Nothing but an answer settles it.
        WhenAskedPress(QMessageBox::Cancel);
        Press(Qt::Key_F5);
        EXPECT_EQ(ReadFile(path.toStdString()), "theirs, which is longer\n");
    }
    Answer("Keep Mine");
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(ReadFile(path.toStdString()), "mine one and two\n");
    EXPECT_EQ(Message(), QString());

    Type("again ");
    Write("a.py", "theirs once more\n");
    ASSERT_TRUE(WaitUntil([&] { return !Message().isEmpty(); }));
    Answer("Load the File");
    EXPECT_EQ(editor().Content(), "theirs once more\n");

    std::filesystem::remove(path.toStdString());
    ASSERT_TRUE(WaitUntil([&] { return window().documents().Front()->IsModified(); }));
    EXPECT_TRUE(WaitUntil([&] { return HoldsACopy(places.folders.state + "/recovery"); }));
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(ReadFile(path.toStdString()), "theirs once more\n");
}

TEST_F(EditorWindow, KeepsBytesThatItDoesNotUnderstand)
{
    const std::string rows[] = {"", "no UTF-8: \xFF\xC0\r\nx\ry\n", std::string("a\0b\n", 4),
                                "\xEF\xBB\xBF"
                                "with a mark\r\n",
                                "no end"};
    Start();
    for (const auto& bytes : rows) {
        const QString path = Write("file.txt", bytes);
        window().OpenFiles({path});
        editor().setFocus();
        Type("x");
        Press(Qt::Key_Backspace);
        ASSERT_TRUE(window().documents().SaveFront());
        EXPECT_EQ(ReadFile(path.toStdString()), bytes);
        ASSERT_TRUE(window().documents().Close(window().documents().currentIndex()));
    }
    EXPECT_EQ(Message(), QString());
}

TEST_F(EditorWindow, SavesUnderTheVeryNameThatIsNoPythonFiles)
{
    Start({Write("Makefile", "all:\n")});
    WhenAsked([this](QWidget& dialog) {
        auto& files = dynamic_cast<QFileDialog&>(dialog);
        files.selectFile(PathOf("GNUmakefile"));
        static_cast<QDialog&>(files).accept();
    });
    EXPECT_TRUE(window().documents().SaveFrontAs());
    EXPECT_EQ(ReadFile(folder / "GNUmakefile"), "all:\n");
}

TEST_F(EditorWindow, OffersUtf8ForACharacterThatAFileCannotHold)
{
    const QString path = Write("latin.py", "x = '\xE9'\n");
    Start({path});
    editor().insert(QString::fromUtf8("\u20ac"));
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(window().documents().SaveFront());
    EXPECT_EQ(ReadFile(path.toStdString()), "x = '\xE9'\n");
    WhenAskedPress(QMessageBox::Save);
    EXPECT_TRUE(window().documents().SaveFront());
    EXPECT_EQ(ReadFile(path.toStdString()), "\u20acx = '\u00e9'\n");
}

TEST_F(EditorWindow, OpensWhatIsDroppedAndWhatWasOpenLately)
{
    const QString first = Write("a & [*] b.py", "1\n2\n3\n");
    const QString second = Write("c.py", "");
    Start();
    DropOn(window(), first);
    ASSERT_EQ(window().documents().Paths(), QStringList(first));
    EXPECT_TRUE(window().windowHandle()->title().startsWith("a & [*] b.py"));
    DropOn(*editor().viewport(), second);
    EXPECT_EQ(window().documents().Paths(), (QStringList{first, second}));
    EXPECT_EQ(editor().Content(), QString()) << "its path is no text";
    while (window().documents().count() > 0) {
        Press(Qt::Key_W, Qt::ControlModifier);
    }
    EXPECT_FALSE(Action("Save As…")->isEnabled());
    Press(Qt::Key_G, Qt::ControlModifier);  // Asks nothing where there are no lines.

    auto* const recent = Action("Open Recent")->menu();
    Q_EMIT recent->aboutToShow();
    ASSERT_EQ(Labels(*recent), (QStringList{second, QString(first).replace("&", "&&")}));
    recent->actions()[1]->trigger();
    EXPECT_EQ(window().documents().Paths(), QStringList(first));
    EXPECT_TRUE(Action("Save As…")->isEnabled());
    WhenAsked([](QWidget& dialog) {
        auto* const line = dialog.findChild<QSpinBox*>();
        EXPECT_EQ(line->maximum(), 4);
        line->setValue(3);
        qobject_cast<QDialog*>(&dialog)->accept();
    });
    Press(Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(editor().CaretLine(), 3);
}

TEST_F(EditorWindow, ShowsTheBoardAndWhyThereIsNone)
{
    Start({Write("a.py", "")});
    const auto menuSays = [&](bool mayAttach) {
        auto* const menu = Action("Board")->menu();
        Q_EMIT menu->aboutToShow();
        return Action("Attach Virtual Board")->isEnabled() == mayAttach &&
               Action("Unplug Virtual Board")->isEnabled() != mayAttach;
    };
    const auto* const shown = window().findChild<QToolButton*>("board");
    EXPECT_TRUE(menuSays(true));
    Action("Attach Virtual Board")->trigger();
    EXPECT_TRUE(menuSays(false)) << "while it starts";
    EXPECT_TRUE(WaitUntil([&] { return shown->text() == "Virtual board"; }));
    EXPECT_TRUE(menuSays(false));
    Action("Unplug Virtual Board")->trigger();
    EXPECT_NE(shown->text(), "Virtual board");
    EXPECT_TRUE(menuSays(true));
    std::filesystem::remove_all(folder / "board");
    Write("board", "a file in the place of its folder");
    Action("Attach Virtual Board")->trigger();
    EXPECT_TRUE(WaitUntil([&] { return Message().contains("virtual board"); }));
    EXPECT_TRUE(menuSays(true));
}

TEST_F(EditorWindow, TellsWhatCannotBeOpenedOrSavedAndKeepsTheText)
{
    std::filesystem::create_directory(folder / "gone");
    const QString path = Write("gone/a.py", "old\n");
    Start({path, PathOf("missing.py"), QString::fromStdString(folder.path())});
    EXPECT_FALSE(Message().isEmpty());
    EXPECT_EQ(window().documents().count(), 1);
    Press(Qt::Key_M, Qt::ControlModifier);
    Press(Qt::Key_Return);
    EXPECT_TRUE(WaitUntil([&] { return Message().isEmpty(); })) << "Return answers a message";
    Type("new ");
    std::filesystem::remove_all(folder / "gone");
    EXPECT_FALSE(window().documents().SaveFront());
    EXPECT_TRUE(Message().contains("gone")) << Message().toStdString();
    EXPECT_EQ(editor().Content(), "new old\n");
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(Close());
    WhenAskedPress(QMessageBox::Discard);
    EXPECT_TRUE(Close());
}

#ifdef __linux__
TEST_F(EditorWindow, KeepsTheTextWhenTheDiskIsFullOrReadOnly)
{
    const std::string disk = folder / "disk";
    std::filesystem::create_directory(disk);
    // In a view of the disks of this program's own.
    if (unshare(CLONE_NEWNS) != 0 || mount("", "/", "", MS_REC | MS_PRIVATE, "") != 0 ||
        mount("none", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "this user may not mount a small disk here";
    }
    const auto unmount = qScopeGuard([&] { umount2(disk.c_str(), MNT_DETACH); });
    Start({Write("disk/a.py", "old\n")});
    const QString large(100'000, 'x');
    editor().append(large);
    EXPECT_FALSE(window().documents().SaveFront());
    EXPECT_TRUE(Message().contains("No space left")) << Message().toStdString();
    EXPECT_EQ(ReadFile(disk + "/a.py"), "old\n");

    ASSERT_EQ(mount("none", disk.c_str(), "", MS_REMOUNT | MS_RDONLY, ""), 0);
    EXPECT_FALSE(window().documents().SaveFront());
    EXPECT_TRUE(Message().contains("Read-only")) << Message().toStdString();
    EXPECT_EQ(editor().Content(), "old\n" + large);
    EXPECT_TRUE(window().documents().Front()->IsModified());
}
#endif

TEST_F(EditorWindow, ComesBackAsItWasLeft)
{
    const QString first = Write("a.py", "");
    const QString second = Write("b.txt", "");
    Start({first, second});
    EXPECT_TRUE(window().screen()->availableGeometry().contains(window().frameGeometry()));
    const int height = window().worksheet().height();
    Press(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(WaitUntil([&] { return window().worksheet().height() > height; }));
    window().resize(700, 500);
    window().project().SetTarget(first);
    window().worksheet().Append("kept\n");
    window().OpenFiles({first});
    ASSERT_TRUE(SheetShows("kept"));
    ASSERT_TRUE(Close());
    Start();
    EXPECT_EQ(window().documents().Paths(), (QStringList{first, second}));
    EXPECT_EQ(window().documents().Front()->path(), first.toStdString());
    EXPECT_EQ(window().size(), QSize(700, 500));
    EXPECT_EQ(Sheet(), "kept\n");
    window().OpenFiles({second});
    EXPECT_EQ(Controls(), QStringList("Run"));  // Because of the target.
}

TEST_F(EditorWindow, RemembersTheDeviceWindowsFrame)
{
    Start();
    Press(Qt::Key_F8);
    ASSERT_TRUE(WaitUntil([] { return DeviceTable() != nullptr; }));
    DeviceTable()->window()->setGeometry(40, 50, 333, 444);
    DeviceTable()->window()->close();
    EXPECT_NE(ReadFile(folder / "config/plugins.settings").find("QuilpWindowFrame -frame "),
              std::string::npos);
    ASSERT_TRUE(Close());
    Start();
    Press(Qt::Key_F8);
    ASSERT_TRUE(WaitUntil([] { return DeviceTable() != nullptr; }));
    EXPECT_EQ(DeviceTable()->window()->size(), QSize(333, 444));
}

TEST_F(EditorWindow, SetsUnreadableSettingsAside)
{
    std::filesystem::create_directory(folder / "config");
    const std::string damaged("\0\xFF binary", 9);
    for (const std::string name : {"plugins.settings", "editor.ini"}) {
        Write("config/" + name, damaged);
    }
    Start();
    for (const std::string name : {"plugins.settings", "editor.ini"}) {
        EXPECT_TRUE(Message().contains(QString::fromStdString(name) + ".unreadable"))
            << Message().toStdString();
        EXPECT_EQ(ReadFile(folder / "config/" + name + ".unreadable"), damaged);
    }
}

TEST_F(EditorWindow, LivesOnWhenThePluginThrowsOrTalksNonsense)
{
    Start({Write("a.py", "")}, QUILP_TESTS "/throwing_plugin.so");
    EXPECT_TRUE(Message().contains("message 104")) << Message().toStdString();
    EXPECT_EQ(Controls(), QStringList(""));
    window().findChild<RunControl*>()->click();
    EXPECT_TRUE(Message().contains("message 100")) << Message().toStdString();
    Action("Show Command Menu")->trigger();
    EXPECT_TRUE(Message().contains("message 101")) << Message().toStdString();
    Press(Qt::Key_F8);
    EXPECT_TRUE(Message().contains("no Device window")) << Message().toStdString();
    WhenAskedPress(QMessageBox::Ok);
    Press(Qt::Key_F1);
    EXPECT_TRUE(Message().contains("no help")) << Message().toStdString();
    Type("still here");
    EXPECT_EQ(editor().Content(), "still here");
    EXPECT_TRUE(window().documents().SaveFront());
    EXPECT_TRUE(Close());
}

TEST_F(EditorWindow, EndsWithinASecondWhileTheBoardPrints)
{
    const auto before = CurrentHoldings();
    Start({Write("loop.py", "while True:\n    print('round')\n")});
    AttachBoard();
    window().worksheet().setFocus();
    Type("");
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("round"));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(RunUntilEnd([this] { window().close(); }));
    End();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    EXPECT_FALSE(SettledHoldings(before).children);
}

TEST_F(EditorWindow, EndsWithoutAQuestionWhenToldAndOffersTheTextAgain)
{
    const QString path = Write("a.py", "old\n");
    Start({path});
    Type("new ");
    EXPECT_TRUE(RunUntilEnd([this] { window().QuitWithoutAsking(); }));
    End();
    Start({path});
    Answer("Recover");
    EXPECT_EQ(editor().Content(), "new old\n");
}

TEST_F(EditorWindow, AsksBeforeItShowsALineThatIsSlowToEdit)
{
    const QString path = Write("data.py", "x = 1\n" + std::string(kLongestSmoothLine + 1, '1'));
    Start({path});
    EXPECT_EQ(window().documents().Paths(), QStringList());
    EXPECT_TRUE(Message().startsWith("Line 2 of " + path)) << Message().toStdString();
    Answer("Open Anyway");
    EXPECT_EQ(window().documents().Paths(), QStringList(path));

    const QString small = Write("small.py", "x = 1\n");
    window().OpenFiles({small});
    Write("small.py", std::string(kLongestSmoothLine + 1, '1'));
    EXPECT_TRUE(WaitUntil([&] { return Message().contains("too long"); }));
    EXPECT_EQ(editor().Content(), "x = 1\n") << "another program may make it one, too";
    WhenAskedPress(QMessageBox::Discard);
    EXPECT_TRUE(Close());
}

TEST_F(EditorWindow, SetsAWorksheetAsideThatCannotBeRead)
{
    std::filesystem::create_directory(folder / "state");
    const std::string sheet = folder / "state/worksheet.txt";
    std::filesystem::resize_file(folder.Write("state/worksheet.txt", ""), kLargestDocument + 1);
    Start();
    EXPECT_TRUE(Message().contains("worksheet.txt.unreadable")) << Message().toStdString();
    Answer("OK");
    ASSERT_TRUE(Close());
    EXPECT_EQ(std::filesystem::file_size(sheet + ".unreadable"), kLargestDocument + 1);
}

TEST_F(EditorWindow, FollowsTheBoardsOwnPathsToItsFiles)
{
    Start({Write("a.py", "")});
    std::filesystem::create_directories(folder / "board/lib");
    Write("board/lib/x.py", "1\n2\n3\n");
    window().worksheet().Append("  File \"/lib/x.py\", line 3, in f\n  File \"no.py\", line 1\n");
    ASSERT_TRUE(SheetShows("no.py"));
    Press(Qt::Key_F4);
    EXPECT_EQ(window().documents().Front()->path(), folder / "board/lib/x.py");
    EXPECT_EQ(editor().CaretLine(), 3);
    Press(Qt::Key_F4);
    EXPECT_TRUE(Message().contains("no.py")) << Message().toStdString();
}

TEST_F(EditorWindow, EditsWhatHasTheKeyboard)
{
    Start({Write("a.py", "word\n")});
    Action("Find…")->trigger();
    QTest::keyClicks(QApplication::focusWidget(), "other");
    Action("Select All")->trigger();
    Action("Cut")->trigger();
    EXPECT_EQ(editor().Content(), "word\n");
    EXPECT_EQ(qobject_cast<QLineEdit*>(QApplication::focusWidget())->text(), QString());
    editor().setFocus();
    Action("Select All")->trigger();
    Action("Paste")->trigger();
    EXPECT_EQ(editor().Content(), "other");
    Action("Undo")->trigger();
    EXPECT_EQ(editor().Content(), "word\n");
    window().worksheet().setFocus();
    Action("Paste")->trigger();
    EXPECT_EQ(Sheet(), "other");
}

TEST_F(EditorWindow, RunsALineOfTheWorksheetInTheProjectsFolder)
{
    std::filesystem::create_directory(folder / "project");
    const std::string project = folder / "project";
    Start({Write("a.py", ""), QString::fromStdString(project)});
    auto& sheet = window().worksheet();
    sheet.SetContent("pwd; echo \"two words\"");
    sheet.setFocus();
    Press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(SheetShows("\"two words\"\n" + project + "\ntwo words\n")) << Sheet();
}

// The other process of the next test.
TEST_F(EditorWindow, DISABLED_IsTheSameUsersOtherEditor)
{
    const std::string root = qEnvironmentVariable("QUILP_TEST_ROOT").toStdString();
    places.folders = {root + "/config", root + "/data", root + "/state"};
    Start({QString::fromStdString(root + "/theirs.py")});
    EXPECT_EQ(Message(), QString());
    Type("unsaved ");
    ASSERT_TRUE(WaitUntil([&] { return HoldsACopy(root + "/state/recovery"); }));
    std::puts("ready");
    std::fflush(stdout);
    ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(root + "/leave"); }));
    window().QuitWithoutAsking();
}

TEST_F(EditorWindow, TwoAtOnceLeaveEachOtherAlone)
{
    std::filesystem::create_directory(folder / "config");
    Write("config/plugins.settings", "OtherPlugin -kept\n");
    Write("theirs.py", "");
    const QString mine = Write("mine.py", "");
    BackgroundProgram other({"/proc/self/exe", "--gtest_also_run_disabled_tests",
                             "--gtest_filter=EditorWindow.DISABLED_IsTheSameUsersOtherEditor"},
                            {"QUILP_TEST_ROOT=" + folder.path()});
    ASSERT_TRUE(other.WaitForOutput("ready")) << other.output();
    Start({mine});
    EXPECT_EQ(Message(), QString()) << "their text is not lost while they edit it";
    Write("config/plugins.settings", "OtherPlugin -kept\nThird -new\n");
    Write("leave", "");
    ASSERT_TRUE(other.WaitForExit(std::chrono::seconds(20)));
    EXPECT_EQ(other.Status(), 0) << other.output();
    Type("also unsaved ");
    EXPECT_TRUE(RunUntilEnd([this] { window().QuitWithoutAsking(); }));
    End();
    const auto settings = ReadFile(folder / "config/plugins.settings");
    EXPECT_NE(settings.find("OtherPlugin -kept\n"), std::string::npos) << settings;
    EXPECT_NE(settings.find("Third -new\n"), std::string::npos) << settings;
    Start();
    EXPECT_EQ(window().documents().Paths(), QStringList(mine)) << "of who ended last";
    EXPECT_TRUE(Message().contains("theirs.py")) << Message().toStdString();
    EXPECT_TRUE(Message().contains("mine.py")) << Message().toStdString();
}

TEST_F(EditorWindow, IconsFollowTheAppearance)
{
    Start();
    const auto draw = [this](Appearance appearance) {
        SetAppearance(appearance);
        return window().findChild<QToolButton*>("board")->icon().pixmap(16).toImage();
    };
    EXPECT_NE(draw(Appearance::Light), draw(Appearance::Dark));
    SetAppearance(Appearance::System);
}

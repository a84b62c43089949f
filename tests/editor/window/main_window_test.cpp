// The editor with its real window, the real plug-in and the real tool.

#include "editor_window_fixture.h"

#include "board_process.h"
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
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

#include <poll.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

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

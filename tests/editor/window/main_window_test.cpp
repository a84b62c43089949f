// The editor as its user meets it: the real window, the real plug-in, the real tool.

#include "editor_window_fixture.h"

#include "appearance.h"
#include "file_bytes.h"
#include "leaks.h"
#include "recovery.h"
#include "run_control.h"
#include "shortcuts_dialog.h"
#include "subprocess.h"
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
#include <QScreen>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QUrl>
#include <QWindow>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>

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

void DropOn(QWidget& over, const QString& path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    const QPoint at(20, over.height() - 5);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    for (QEvent* const event : std::initializer_list<QEvent*>{&enter, &move, &drop}) {
        QCoreApplication::sendEvent(&over, event);
    }
}

// Whether a folder of recovery copies has one; its lock is empty.
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

QStringList Labels(const QWidget& menu)
{
    QStringList labels;
    for (const auto* const action : menu.actions()) {
        labels.append(action->text());
    }
    return labels;
}

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
    ASSERT_TRUE(WaitForIdle());

    Press(Qt::Key_F6);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(Read("board/loop.py"), kEndless);
}

TEST_F(EditorWindow, ShowsTheControlExactlyWhileThePluginOffersIt)
{
    const QString notes = Write("notes.txt", "");
    const QString python = Write("a.py", "");
    const auto main = Write("project/main.py", "").toStdString();
    Start({notes});
    auto& project = window().project();
    const struct {
        const char* name;
        std::function<void()> act;
        bool isOffered;
    } steps[] = {
        {"no Python", [] {}, false},
        {"a project", [&] { window().OpenFiles({PathOf("project")}); }, true},
        {"a project without a program", [&] { fs::remove(main); }, false},
        {"Python", [&] { window().OpenFiles({python}); }, true},
        {"no Python again", [&] { window().OpenFiles({notes}); }, false},
        {"a target", [&] { project.SetTarget(python); }, true},
        {"no target", [&] { project.SetTarget({}); }, false},
        {"any target", [&] { project.SetTarget(notes); }, true},
    };
    for (const auto& step : steps) {
        step.act();
        EXPECT_TRUE(WaitUntil([&] { return Controls().isEmpty() != step.isOffered; })) << step.name;
    }
}

TEST_F(EditorWindow, OpensThePopUpOfAControlInEveryWay)
{
    Start({Write("a.py", "while True: pass\n")});
    auto* const control = window().findChild<RunControl*>();
    const QPoint middle = control->rect().center();
    const auto click = [&](int x) { QTest::mouseClick(control, Qt::LeftButton, {}, {x, 8}); };
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"its arrow", [&] { click(control->width() - 4); }},
        {"a press that lasts", [&] { QTest::mousePress(control, Qt::LeftButton, {}, middle); }},
        {"the arrow key", [&] { QTest::keyClick(control, Qt::Key_Down); }},
        {"the right button",
         [&] {
             QContextMenuEvent event(QContextMenuEvent::Mouse, middle,
                                     control->mapToGlobal(middle));
             QCoreApplication::sendEvent(control, &event);
         }},
        {"the menu", [&] { Action("Show Command Menu")->trigger(); }},
    };
    for (const auto& [name, ask] : ways) {
        SCOPED_TRACE(name);
        bool opened = false;
        WhenAsked([&](QWidget& menu) {
            const auto corner = control->mapToGlobal(QPoint(0, control->height()));
            EXPECT_EQ(menu.pos(), corner + QPoint(0, 6));
            EXPECT_EQ(menu.actions()[0]->text(), "Run");
            EXPECT_EQ(menu.actions()[0]->shortcut(), QKeySequence("F5"));
            menu.close();
            opened = true;
        });
        ask();
        EXPECT_TRUE(WaitUntil([&] { return opened; }));
        QTest::mouseRelease(control, Qt::LeftButton, {}, middle);
        QCoreApplication::processEvents();
        EXPECT_FALSE(control->isDown());
        EXPECT_TRUE(Runtime::Current().IsIdle()) << "it counted as a click";
    }
    window().OpenFiles({Write("notes.txt", "")});
    WhenAsked([](QWidget& menu) {
        EXPECT_TRUE(Labels(menu).contains("Open Device window")) << "without a control";
        menu.close();
    });
    Action("Show Command Menu")->trigger();
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
    choose("nothing", [] {});
    choose("Stop ", [] {});
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(Read("a.py"), "print(1)\n");
    Write("a.py", "theirs, longer\n");
    choose("Run", [this] { WhenAskedPress(QMessageBox::Cancel); });
    EXPECT_TRUE(Runtime::Current().IsIdle()) << "theirs runs";
    choose("Run", [this] { WhenAskedPress(QMessageBox::Save); });
    EXPECT_EQ(Read("a.py"), "print('new')#print(1)\n");
    ASSERT_TRUE(SheetShows("new\n"));

    Action("Save before Commands")->setChecked(true);
    Action("Save before Commands")->setChecked(false);
    editor().GoToLine(1);
    Type("print('unsaved');");
    Press(Qt::Key_F5);
    ASSERT_TRUE(WaitForIdle());
    EXPECT_EQ(Sheet().find("unsaved"), std::string::npos);
    EXPECT_EQ(Read("a.py"), "print('new')#print(1)\n");
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
        EXPECT_EQ(name->text(), "untitled_1") << "a name with a space could not run";
        name->setText(PathOf("answer.py"));
        qobject_cast<QDialog*>(&dialog)->accept();
    });
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("42\n"));
    EXPECT_EQ(Read("answer.py"), "print(6 * 7)");
    EXPECT_EQ(Controls(), QStringList("Run"));
    ASSERT_TRUE(WaitForIdle());
    window().project().SetTarget(PathOf("answer.py"));
    window().documents().New();
    window().worksheet().Clear();
    Press(Qt::Key_F5);
    EXPECT_TRUE(SheetShows("42\n")) << "the target runs while there is nothing to save";
}

TEST_F(EditorWindow, ChangesShortcutsButRefusesConflicts)
{
    Start({Write("a.py", "")});
    WhenAsked([](QWidget& dialog) {
        const auto edits = dialog.findChildren<QKeySequenceEdit*>();
        ASSERT_EQ(edits.size(), 5);
        const auto* const problem = dialog.findChild<QLabel*>("problem");
        const auto buttons = dialog.findChildren<QPushButton*>();
        const auto ok = std::ranges::find_if(
            buttons, [](const auto* button) { return button->text().contains("OK"); });
        ASSERT_NE(ok, buttons.end());
        // Another command's, the editor's own, the text's.
        for (const char* taken : {"Shift+F5", "Ctrl+S", "Ctrl+Left", "Return"}) {
            edits[0]->setKeySequence(QKeySequence(taken));
            EXPECT_FALSE((*ok)->isEnabled() || problem->text().isEmpty()) << taken;
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

TEST_F(EditorWindow, TheShortcutsDialogMayGoWhileItIsOpen)
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

// The other process of the next test.
TEST_F(EditorWindow, DISABLED_IsTheSameUsersOtherEditor)
{
    const std::string root = qEnvironmentVariable("QUILP_TEST_ROOT").toStdString();
    places.folders = {root + "/config", root + "/data", root + "/state"};
    Start({QString::fromStdString(root + "/theirs.py")});
    Type("saved ");
    ASSERT_TRUE(WaitUntil([&] { return HasCopy(root + "/state/recovery"); }));
    ASSERT_TRUE(window().documents().SaveFront());
    ASSERT_TRUE(WaitUntil([&] { return !HasCopy(root + "/state/recovery"); }));
    Type("unsaved ");
    ASSERT_TRUE(WaitUntil([&] { return HasCopy(root + "/state/recovery"); }));
    std::puts("ready");
    std::fflush(stdout);
    WaitUntil([] { return false; });  // Until it is killed.
}

TEST_F(EditorWindow, TwoAtOnceLeaveEachOtherAloneAndAKilledOnesTextIsRecovered)
{
    Write("config/plugins.settings", "OtherPlugin -kept\n");
    const QString theirs = Write("theirs.py", "old\n");
    const QString mine = Write("mine.py", "old\n");
    BackgroundProgram other({"/proc/self/exe", "--gtest_also_run_disabled_tests",
                             "--gtest_filter=EditorWindow.DISABLED_IsTheSameUsersOtherEditor"},
                            {"QUILP_TEST_ROOT=" + folder.path()});
    ASSERT_TRUE(other.WaitForOutput("ready")) << other.output();
    Start({mine});
    EXPECT_EQ(Message(), "") << "their text is not lost while they edit it";
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
    Type("typed ");  // Keeps its tab: the recovered text of the same file gets another.
    const QStringList texts{"mine old\n", "typed changed meanwhile\n", "saved unsaved old\n"};
    const auto expectTexts = [&] {  // The last one stays in front.
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
    expectTexts();                      // Two of them are of one file.
    WhenAskedPress(QMessageBox::Save);  // Over the change.
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read("theirs.py"), "saved unsaved old\n");
    window().documents().CloseAll();
    ASSERT_TRUE(Close());
    Start();
    EXPECT_EQ(Message(), "") << "it is offered twice";
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
    for (const char* key : {"once", "again: nothing but an answer settles it"}) {
        WhenAskedPress(QMessageBox::Cancel);
        Press(Qt::Key_F5);
        EXPECT_EQ(Read("a.py"), "theirs, which is longer\n") << key;
    }
    Answer("Keep My Changes");
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read("a.py"), "mine one and two\n");
    EXPECT_EQ(Message(), "");

    Type("again ");
    Write("a.py", "theirs once more\n");
    ASSERT_TRUE(MessageShows("changed"));
    Answer("Reload");
    EXPECT_EQ(editor().Content(), "theirs once more\n");

    fs::remove(folder / "a.py");
    ASSERT_TRUE(WaitUntil([&] { return window().documents().Front()->IsModified(); }));
    EXPECT_TRUE(WaitUntil([&] { return HasCopy(places.folders.state + "/recovery"); }));
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read("a.py"), "theirs once more\n");
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
    EXPECT_EQ(Read("GNUmakefile"), "all:\n");
}

TEST_F(EditorWindow, KeepsAnEncodingUnlessACharacterNeedsUtf8)
{
    const std::string latin("x = '\xE9'\r\n\0y\n", 12);
    Start({Write("latin.py", latin)});
    Type("z");
    Press(Qt::Key_Backspace);
    ASSERT_TRUE(window().documents().SaveFront());
    EXPECT_EQ(Read("latin.py"), latin);
    editor().insert("€");
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(window().documents().SaveFront());
    EXPECT_EQ(Read("latin.py"), latin);
    WhenAskedPress(QMessageBox::Save);
    EXPECT_TRUE(window().documents().SaveFront());
    EXPECT_TRUE(Read("latin.py").starts_with("€x = 'é'\r\n"));
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
    const auto mayAttach = [&] {
        Q_EMIT Action("Board")->menu()->aboutToShow();
        const bool attach = Action("Attach Virtual Board")->isEnabled();
        EXPECT_NE(attach, Action("Detach Virtual Board")->isEnabled());
        return attach;
    };
    const auto* const shown = window().findChild<QToolButton*>("board");
    EXPECT_TRUE(mayAttach());
    Action("Attach Virtual Board")->trigger();
    EXPECT_FALSE(mayAttach()) << "while it starts";
    EXPECT_TRUE(WaitUntil([&] { return shown->text() == "Virtual board"; }));
    EXPECT_FALSE(mayAttach());
    Action("Detach Virtual Board")->trigger();
    EXPECT_NE(shown->text(), "Virtual board");
    EXPECT_TRUE(mayAttach());
    const auto icon = [&](Appearance appearance) {
        SetAppearance(appearance);
        return shown->icon().pixmap(16).toImage();
    };
    EXPECT_NE(icon(Appearance::Light), icon(Appearance::Dark));
    SetAppearance(Appearance::System);
    fs::remove_all(folder / "board");
    Write("board", "a file in the place of its folder");
    Action("Attach Virtual Board")->trigger();
    EXPECT_TRUE(MessageShows("virtual board"));
    EXPECT_TRUE(mayAttach());
}

TEST_F(EditorWindow, ReportsWhatCannotBeOpenedOrSavedAndKeepsTheText)
{
    Start({Write("gone/a.py", "old\n"), PathOf("missing.py"), PathOf("")});
    EXPECT_TRUE(MessageShows("missing.py"));
    EXPECT_EQ(window().documents().count(), 1);
    Press(Qt::Key_M, Qt::ControlModifier);
    Press(Qt::Key_Return);
    EXPECT_TRUE(WaitUntil([&] { return Message().empty(); })) << "Return answers a message";
    Type("new ");
    fs::remove_all(folder / "gone");
    EXPECT_FALSE(window().documents().SaveFront());
    EXPECT_TRUE(MessageShows("cannot create a file"));
    EXPECT_EQ(editor().Content(), "new old\n");
    WhenAskedPress(QMessageBox::Cancel);
    EXPECT_FALSE(Close());
    WhenAskedPress(QMessageBox::Discard);
    EXPECT_TRUE(Close());
}

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
    Press(Qt::Key_F8);
    ASSERT_TRUE(WaitUntil([] { return DeviceTable() != nullptr; }));
    DeviceTable()->window()->setGeometry(40, 50, 333, 444);
    DeviceTable()->window()->close();
    EXPECT_NE(Read("config/plugins.settings").find("QuilpWindowFrame -frame "), std::string::npos);
    ASSERT_TRUE(Close());
    Start();
    EXPECT_EQ(window().documents().Paths(), (QStringList{first, second}));
    EXPECT_EQ(window().documents().Front()->path(), first.toStdString());
    EXPECT_EQ(window().size(), QSize(700, 500));
    EXPECT_EQ(Sheet(), "kept\n");
    window().OpenFiles({second});
    EXPECT_EQ(Controls(), QStringList("Run")) << "the target is lost";
    Press(Qt::Key_F8);
    ASSERT_TRUE(WaitUntil([] { return DeviceTable() != nullptr; }));
    EXPECT_EQ(DeviceTable()->window()->size(), QSize(333, 444));
}

TEST_F(EditorWindow, SetsUnreadableFilesOfItsOwnAside)
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

TEST_F(EditorWindow, SurvivesAPluginThatThrowsOrSendsNonsense)
{
    Start({Write("a.py", "")}, QUILP_TEST_BIN "/throwing_plugin.so");
    EXPECT_TRUE(MessageShows("message 104"));
    EXPECT_EQ(Controls(), QStringList(""));
    window().findChild<RunControl*>()->click();
    EXPECT_TRUE(MessageShows("message 100"));
    Action("Show Command Menu")->trigger();
    EXPECT_TRUE(MessageShows("message 101"));
    Press(Qt::Key_F8);
    EXPECT_TRUE(MessageShows("no Device window"));
    WhenAskedPress(QMessageBox::Ok);
    Press(Qt::Key_F1);
    EXPECT_TRUE(MessageShows("no help"));
    Type("still here");
    EXPECT_TRUE(window().documents().SaveFront());
    EXPECT_EQ(Read("a.py"), "still here");
    EXPECT_TRUE(Close());
}

TEST_F(EditorWindow, EndsWithinASecondWhileTheBoardPrints)
{
    const auto before = CurrentHoldings();
    Start({Write("loop.py", kEndless)});
    AttachBoard();
    Press(Qt::Key_F5);
    ASSERT_TRUE(SheetShows("round"));
    const auto begin = std::chrono::steady_clock::now();
    EndBy([this] { window().close(); });
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    EXPECT_FALSE(SettledHoldings(before).children);
}

TEST_F(EditorWindow, AsksBeforeItShowsALineThatIsSlowToEdit)
{
    const std::string slow(kMaxSmoothLineLength + 1, '1');
    const QString path = Write("data.py", "x = 1\n" + slow);
    Start({path});
    EXPECT_EQ(window().documents().Paths(), QStringList());
    EXPECT_TRUE(Message().starts_with("Line 2 of " + path.toStdString())) << Message();
    Answer("Open Anyway");
    EXPECT_EQ(window().documents().Paths(), QStringList(path));

    window().OpenFiles({Write("small.py", "x = 1\n")});
    Write("small.py", slow);
    EXPECT_TRUE(MessageShows("too long"));
    EXPECT_EQ(editor().Content(), "x = 1\n") << "another program may write one, too";
    WhenAskedPress(QMessageBox::Discard);
    EXPECT_TRUE(Close());
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
    sheet.Append("  File \"/lib/x.py\", line 3, in f\n  File \"no.py\", line 1\n");
    Press(Qt::Key_F4);
    EXPECT_EQ(window().documents().Front()->path(), folder / "board/lib/x.py");
    EXPECT_EQ(editor().CaretLine(), 3);
    Press(Qt::Key_F4);
    EXPECT_TRUE(MessageShows("no.py"));
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

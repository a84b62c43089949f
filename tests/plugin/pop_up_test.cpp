// The menu of all commands, on the screen.

#include "pop_up.h"

#include "host_window.h"
#include "menus.h"
#include "plugin_fixture.h"
#include "quilp_window.h"
#include "wait.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QMenu>
#include <QShortcut>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace {

void PressKeysForItem(QMenu& menu, const std::string& label)
{
    const auto index = menu.actions().indexOf(ItemOf(menu, label));
    for (qsizetype i = 0; i <= index; ++i) {
        QTest::keyClick(&menu, Qt::Key_Down);
    }
    QTest::keyClick(&menu, Qt::Key_Return);
}

class PopUp : public PluginTest {
  protected:
    PopUp()
    {
        OpenPython("/p/blink.py");
        ShowWindow();
    }
    ~PopUp() override { runtime.ShutDown(); }

    void ShowWindow()
    {
        window = std::make_unique<QWidget>();
        window->setGeometry(50, 60, 300, 200);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        hostWindow = std::make_unique<HostWindow>(window.get());
        host.window = hostWindow.get();
    }

    // Asks for the menu. `use` gets it when it is open, and is to close it.
    void Ask(const std::function<void(QMenu&)>& use)
    {
        bool used = false;
        const QDeadlineTimer deadline(std::chrono::seconds(20));
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, &tick, [&] {
            auto* const menu = OpenMenu();
            if (menu != nullptr && !std::exchange(used, true)) {
                use(*menu);
            } else if (menu != nullptr && deadline.hasExpired()) {
                ADD_FAILURE() << "the menu stays open";
                menu->close();
            }
        });
        tick.start(std::chrono::milliseconds(2));
        EXPECT_EQ(PluginMain(101, &host), 1);
        EXPECT_TRUE(used);
        EXPECT_EQ(OpenMenu(), nullptr);
    }

    Strings AskForLabels()
    {
        Strings labels;
        Ask([&](QMenu& menu) {
            labels = LabelsOf(menu);
            menu.close();
        });
        return labels;
    }

    std::unique_ptr<QWidget> window;
    std::unique_ptr<HostWindow> hostWindow;
};

}  // namespace

TEST_F(PopUp, ItsLabelsNameWhatTheCommandsWouldActOn)
{
    const Strings nothing{"Stop ", "List ", "Status ", "Add upload command to worksheet ",
                          "Open Device window"};
    const auto runnable = [&](const Strings& labels) {
        auto all = labels;
        all.insert(all.end(), nothing.begin() + 1, nothing.end());
        return all;
    };
    const Strings unnamed = runnable({"Run", "Stop ", "Upload as main.py", "Upload "});
    struct Row {
        const char* name;
        std::uint32_t language;
        bool hasTarget;
        std::uint32_t targetLanguage;
        const char* target;
        Strings labels;
    };
    const Row rows[] = {
        {"nothing", 0, false, kPythonLanguage, "/p/boot.py", nothing},
        {"a Python document", kPythonLanguage, false, 0, "", unnamed},
        {"a Python document before a target", kPythonLanguage, true, kPythonLanguage, "/p/boot.py",
         unnamed},
        {"a Python target", 0, true, kPythonLanguage, "/p/boot.py",
         runnable({"Run boot.py", "Stop ", "Upload boot.py as main.py", "Upload  boot.py"})},
        {"a Python target without a name", 0, true, kPythonLanguage, "/p/", unnamed},
        {"another target", 0, true, 7, "/p/boot.c", nothing},
    };
    host.document = "/p/blink.py";
    for (const auto& row : rows) {
        host.language = row.language;
        host.currentTarget = row.hasTarget;
        host.targetLanguage = row.targetLanguage;
        host.target = row.target;
        EXPECT_EQ(AskForLabels(), row.labels) << row.name;
    }
}

TEST_F(PopUp, TheStopItemNamesTheFileThatWasRunUntilItIsStopped)
{
    Ask([](QMenu& menu) { ClickItem(menu, "Run"); });
    shells::Finish();
    EXPECT_EQ(AskForLabels().at(1), "Stop blink.py") << "also when it has ended";
    Ask([](QMenu& menu) { ClickItem(menu, "Stop blink.py"); });
    EXPECT_EQ(AskForLabels().at(1), "Stop ");
}

TEST_F(PopUp, TheChosenCommandIsPerformedBeforeTheCallReturns)
{
    struct Row {
        const char* label;
        std::string words;  // of the line that is run; empty for none
        std::string worksheet;
    };
    const Row rows[] = {
        {"Run", " run /p/blink.py\n", ""},
        {"Stop blink.py", " disconnect /p/blink.py\n", ""},
        {"Upload as main.py", " cp /p/blink.py :'main.py'\n", ""},
        {"Upload ", " cp /p/blink.py :'blink.py'\n", ""},
        {"List ", " ls \n", ""},
        {"Status ", " devs df \n", ""},
        {"Add upload command to worksheet ", "", host.Tool() + " cp '<from>':'<to>'"},
        {"Open Device window", " ls '/'\n", ""},
    };
    for (auto* const choose : {ClickItem, PressKeysForItem}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.label);
            host.worksheet.clear();
            shells::TakeCalls();
            Ask([&](QMenu& menu) { choose(menu, row.label); });
            EXPECT_EQ(std::ranges::count(shells::TakeCalls(), RunLine(row.words)),
                      row.words.empty() ? 0 : 1);
            EXPECT_EQ(host.worksheet, row.worksheet);
        }
        ASSERT_NE(QuilpWindow::gInstance, nullptr);
        QuilpWindow::gInstance->Quit();
    }
}

TEST_F(PopUp, AWindowThatHasJustClosedDoesNotTakeTheMenuWithIt)
{
    QuilpWindow::ShowInstance(&host);
    QuilpWindow::gInstance->Quit();
    // The window becomes the active one only now that it is hidden and about to be destroyed.
    ASSERT_TRUE(WaitUntil([&] { return QApplication::activeWindow() != window.get(); }));
    Ask([](QMenu& menu) { ClickItem(menu, "List "); });
    EXPECT_EQ(shells::TakeCalls().back(), RunLine(" ls \n"));
}

TEST_F(PopUp, EveryItemShowsTheShortcutThatTheHostHasForIt)
{
    struct Row {
        std::pair<std::uint32_t, std::uint32_t> shortcut;
        const char* shown;
    };
    const Row rows[] = {
        {{'R', 2}, "Ctrl+R"},
        {{0xC4, 1}, "Shift+Ä"},
        {{'1', 0x47}, "Meta+Ctrl+Alt+Shift+1"},
        {{0x81, 0}, "F1"},
        {{0x9F, 4}, "Meta+F31"},
        {{0x01000052, 2}, "Ctrl+R"},  // Bits above the low eight are cut.
        {{0x01000000, 2}, ""},
        {{0x0D, 2}, ""},
        {{0x80, 0}, ""},
        {{0, 2}, ""},
    };
    int plainWidth = 0;
    Ask([&](QMenu& menu) {
        plainWidth = menu.width();
        menu.close();
    });
    EXPECT_EQ(host.shortcutsAsked, (Strings{"QuilpRun", "QuilpStop", "QuilpUploadAsMain",
                                            "QuilpUpload", "QuilpList", "", "", ""}));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.shown);
        host.shortcut = row.shortcut;
        Ask([&](QMenu& menu) {
            for (const auto* action : menu.actions()) {
                EXPECT_EQ(action->shortcut(), QKeySequence(row.shown))
                    << action->text().toStdString();
            }
            EXPECT_EQ(menu.width() > plainWidth, *row.shown != '\0') << "it stands in the menu";
            menu.close();
        });
    }
}

TEST_F(PopUp, ItsShortcutsAnswerToNoKey)
{
    host.shortcut = {'R', 2};
    QShortcut own(QKeySequence("Ctrl+R"), window.get());
    own.setContext(Qt::ApplicationShortcut);
    int pressed = 0;
    QObject::connect(&own, &QShortcut::activated, &own, [&] { ++pressed; });
    Ask([&](QMenu& menu) {
        QTest::keyClick(window.get(), Qt::Key_R, Qt::ControlModifier);
        EXPECT_EQ(pressed, 1) << "the key stays the editor's";
        EXPECT_TRUE(menu.isVisible());
        menu.close();
    });
    EXPECT_FALSE(Running());
}

TEST_F(PopUp, OpensBelowTheControlInTheFontForIt)
{
    host.buttonFrame = {20, 30, 120, 55};
    const QPoint inWindow = window->mapToGlobal(QPoint(20, 61));
    HostWindow none(nullptr);
    const std::pair<HostWindow*, QPoint> rows[] = {{hostWindow.get(), inWindow},
                                                   {&none, QPoint(20, 61)}};
    for (const auto& [itsWindow, at] : rows) {
        host.window = itsWindow;
        Ask([&](QMenu& menu) {
            EXPECT_EQ(menu.pos(), at);
            EXPECT_EQ(menu.font().pointSizeF(), 10.0);
            EXPECT_EQ(menu.font().family(), QApplication::font().family());
            menu.close();
        });
    }
}

TEST_F(PopUp, NoCommandIsPerformedWhenItClosesWithoutAChoice)
{
    struct Row {
        const char* name;
        std::function<void(QMenu&)> end;
    };
    const Row rows[] = {
        {"Escape", [](QMenu& menu) { QTest::keyClick(&menu, Qt::Key_Escape); }},
        {"a click beside it",
         [](QMenu& menu) { QTest::mouseClick(&menu, Qt::LeftButton, {}, QPoint(-20, -20)); }},
        {"the window closes", [&](QMenu&) { window->close(); }},
        {"the window is destroyed", [&](QMenu&) { window.reset(); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Ask([&](QMenu& menu) {
            menu.setActiveAction(ItemOf(menu, "Run"));
            row.end(menu);
        });
        EXPECT_FALSE(Running());
        ShowWindow();
    }
}

TEST_F(PopUp, DoesNotKeepTheProgramFromEnding)
{
    QTimer::singleShot(0, window.get(), [this] {
        Ask([](QMenu& menu) {
            menu.setActiveAction(ItemOf(menu, "Run"));
            QCoreApplication::exit(5);
        });
    });
    EXPECT_EQ(QCoreApplication::exec(), 5);
    EXPECT_FALSE(Running());
}

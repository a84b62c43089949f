#include "pop_up.h"

#include "host_window.h"
#include "menus.h"
#include "plugin_fixture.h"
#include "quilp_window.h"
#include "wait.h"

#include <QShortcut>
#include <QTimer>

namespace {

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

    // Requests the menu, which `use` must close, and returns its labels.
    Strings Ask(const std::function<void(QMenu&)>& use)
    {
        Strings labels;
        QTimer::singleShot(0, [&] {
            auto* const menu = OpenMenu();
            ASSERT_NE(menu, nullptr);
            labels = LabelsOf(*menu);
            use(*menu);
        });
        EXPECT_EQ(PluginMain(101, &host), 1);
        EXPECT_EQ(OpenMenu(), nullptr);
        return labels;
    }

    std::unique_ptr<QWidget> window;
    std::unique_ptr<HostWindow> hostWindow;
};

}  // namespace

TEST_F(PopUp, TheLabelsNameTheFileThatTheCommandsActOn)
{
    const Strings always{"Stop ", "List ", "Status ", "Add upload command to worksheet ",
                         "Open Device window"};
    const auto runnable = [&](const std::string& suffix) {
        Strings labels = always;
        labels.insert(labels.begin() + 1, {"Upload" + suffix + " as main.py", "Upload " + suffix});
        labels.insert(labels.begin(), "Run" + suffix);
        return labels;
    };
    const std::tuple<const char*, std::uint32_t, bool, std::uint32_t, const char*, Strings> rows[] =
        {
            {"nothing", 0, false, 19, "/p/boot.py", always},
            {"a Python document before a target", 19, true, 19, "/p/boot.py", runnable("")},
            {"a Python target", 0, true, 19, "/p/boot.py", runnable(" boot.py")},
            {"a Python target without a name", 0, true, 19, "/p/", runnable("")},
            {"another target", 0, true, 7, "/p/boot.c", always},
        };
    for (const auto& [name, language, hasTarget, targetLanguage, target, labels] : rows) {
        host.language = language;
        host.currentTarget = hasTarget;
        host.targetLanguage = targetLanguage;
        host.target = target;
        EXPECT_EQ(Ask([](QMenu& menu) { menu.close(); }), labels) << name;
    }
}

TEST_F(PopUp, TheChosenCommandIsPerformedBeforeTheCallReturns)
{
    const std::pair<std::string, std::string> rows[] = {
        {"Run", " run /p/blink.py\n"},
        {"Stop blink.py", " disconnect /p/blink.py\n"},
        {"Stop ", " disconnect /p/blink.py\n"},
        {"Upload as main.py", " cp /p/blink.py :'main.py'\n"},
        {"Upload ", " cp /p/blink.py :'blink.py'\n"},
        {"List ", " ls \n"},
        {"Status ", " devs df \n"},
        {"Open Device window", " ls '/'\n"},
        {"Add upload command to worksheet ", ""},
    };
    for (const auto& [label, words] : rows) {
        EXPECT_EQ(host.worksheet, "");
        Ask([&](QMenu& menu) { ChooseItem(menu, label); });
        EXPECT_EQ(TakeWords(), words);
    }
    EXPECT_EQ(host.worksheet, host.Tool() + " cp '<from>':'<to>'");

    // The window that becomes the active one only now is hidden and about to be destroyed.
    QuilpWindow::gInstance->Quit();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::activeWindow() != window.get(); }));
    Ask([](QMenu& menu) { ChooseItem(menu, "List "); });
    EXPECT_EQ(TakeWords(), " ls \n");
}

TEST_F(PopUp, EveryItemShowsTheShortcutOfItsCommandButDoesNotReactToIt)
{
    const std::pair<std::pair<std::uint32_t, std::uint32_t>, const char*> rows[] = {
        {{0, 2}, ""},
        {{'R', 2}, "Ctrl+R"},
        {{0xC4, 1}, "Shift+Ä"},
        {{'1', 0x47}, "Meta+Ctrl+Alt+Shift+1"},
        {{0x81, 0}, "F1"},
        {{0x9F, 4}, "Meta+F31"},
        {{0x01000052, 2}, "Ctrl+R"},
        {{0x01000000, 2}, ""},
        {{0x0D, 2}, ""},
        {{0x80, 0}, ""},
    };
    QShortcut own(QKeySequence("Ctrl+R"), window.get());
    own.setContext(Qt::ApplicationShortcut);
    int activations = 0;
    QObject::connect(&own, &QShortcut::activated, &own, [&] { ++activations; });
    int plainWidth = 0;
    for (const auto& [shortcut, shown] : rows) {
        SCOPED_TRACE(shown);
        host.shortcut = shortcut;
        host.TakeLog();
        Ask([&](QMenu& menu) {
            for (const auto* action : menu.actions()) {
                EXPECT_EQ(action->shortcut(), QKeySequence(shown));
            }
            plainWidth = plainWidth == 0 ? menu.width() : plainWidth;
            EXPECT_EQ(menu.width() > plainWidth, *shown != '\0');
            QTest::keyClick(window.get(), Qt::Key_R, Qt::ControlModifier);
            EXPECT_EQ(std::exchange(activations, 0), 1);
            menu.close();
        });
        EXPECT_FALSE(Running());
        EXPECT_EQ(host.TakeLog(),
                  "DocumentLanguage DocumentLanguage shortcut of QuilpRun shortcut of QuilpStop "
                  "DocumentLanguage DocumentLanguage shortcut of QuilpUploadAsMain "
                  "DocumentLanguage shortcut of QuilpUpload shortcut of QuilpList "
                  "shortcut of  shortcut of  shortcut of ");
    }
}

TEST_F(PopUp, OpensBelowTheControlInASmallFont)
{
    host.buttonFrame = {20, 30, 120, 55};
    HostWindow none(nullptr);
    const std::pair<HostWindow*, QPoint> rows[] = {
        {hostWindow.get(), window->mapToGlobal(QPoint(20, 61))}, {&none, QPoint(20, 61)}};
    for (const auto& [itsWindow, at] : rows) {
        host.window = itsWindow;
        Ask([&](QMenu& menu) {
            EXPECT_EQ(menu.pos(), at);
            EXPECT_EQ(menu.font().pointSizeF(), 10.0);
            menu.close();
        });
    }
}

TEST_F(PopUp, NoCommandIsPerformedWhenItClosesWithoutAChoice)
{
    const std::pair<const char*, std::function<void(QMenu&)>> rows[] = {
        {"Escape", [](QMenu& menu) { QTest::keyClick(&menu, Qt::Key_Escape); }},
        {"a click beside it",
         [](QMenu& menu) { QTest::mouseClick(&menu, Qt::LeftButton, {}, QPoint(-20, -20)); }},
        {"the window closes", [&](QMenu&) { window->close(); }},
        {"the window is destroyed", [&](QMenu&) { window.reset(); }},
    };
    for (const auto& [name, close] : rows) {
        SCOPED_TRACE(name);
        Ask([&](QMenu& menu) {
            menu.setActiveAction(menu.actions().at(0));
            close(menu);
        });
        EXPECT_FALSE(Running());
        ShowWindow();
    }
    QTimer::singleShot(0, window.get(), [this] { Ask([](auto&) { QCoreApplication::exit(5); }); });
    EXPECT_EQ(QCoreApplication::exec(), 5) << "the program exits while the menu is open";
    EXPECT_FALSE(Running());
}

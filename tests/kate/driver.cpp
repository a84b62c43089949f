// A plug-in for tests, which Kate loads beside the one that is tested. It does what a user does, in
// the scenario that the environment names, and quits Kate. At the first condition that does not
// hold it prints it and ends the process.

#include <KAcceleratorManager>
#include <KActionCollection>
#include <KPluginFactory>
#include <KTextEditor/Application>
#include <KTextEditor/Document>
#include <KTextEditor/Editor>
#include <KTextEditor/MainWindow>
#include <KTextEditor/Plugin>
#include <KTextEditor/View>
#include <KXMLGUIFactory>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

namespace {

constexpr int kPatience = 20'000;  // milliseconds

void Require(bool condition, const QString& what)
{
    if (!condition) {
        std::fprintf(stderr, "driver: failed: %s\n", qPrintable(what));
        std::_Exit(1);
    }
}

void WaitFor(const QString& what, const std::function<bool()>& condition)
{
    Require(QTest::qWaitFor(condition, kPatience), what);
}

// Does the work in a later iteration of the event loop, in which the condition holds. For what
// opens while a call waits for the user.
void When(const std::function<bool()>& condition, const std::function<void()>& work)
{
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        if (condition()) {
            timer->deleteLater();
            timer->stop();
            work();
        }
    });
    timer->start(20);
}

KTextEditor::Application& Kate()
{
    return *KTextEditor::Editor::instance()->application();
}

KTextEditor::MainWindow& Front()
{
    return *Kate().activeMainWindow();
}

QAction* FindAction(const KTextEditor::MainWindow& window, const QString& name)
{
    for (auto* const client :
         const_cast<KTextEditor::MainWindow&>(window).guiFactory()->clients()) {
        if (auto* const action = client->actionCollection()->action(name)) {
            return action;
        }
    }
    return nullptr;
}

void Trigger(const QString& name)
{
    auto* const action = FindAction(Front(), name);
    Require(action != nullptr && action->isEnabled(), "the action " + name);
    action->trigger();
}

QPlainTextEdit* Output()
{
    return Front().window()->findChild<QPlainTextEdit*>("micropython_output");
}

qsizetype CountOutput(const QString& text)
{
    return Output() != nullptr ? Output()->toPlainText().count(text) : 0;
}

void WaitForOutput(const QString& text)
{
    WaitFor("the output " + text, [=] { return CountOutput(text) > 0; });
}

// Presses keys in the document.
void Press(Qt::Key key)
{
    auto& window = *Front().window();
    window.activateWindow();
    WaitFor("an active window", [&] { return window.isActiveWindow(); });
    Front().activateView(Kate().documents().constFirst())->setFocus();
    QTest::keyClick(window.windowHandle(), key, Qt::ControlModifier | Qt::AltModifier);
}

// At the prompt.
void Enter(const QString& text)
{
    Trigger("quilp_prompt");
    auto* const field = Front().window()->focusWidget();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
    WaitForOutput("\n" + text + "\n");
}

bool IsProcessRunning(const QString& name)
{
    QProcess list;
    list.start("ps",
               {"-o", "args=", "--ppid", QString::number(QCoreApplication::applicationPid())});
    Require(list.waitForFinished(), "the list of processes");
    return list.readAllStandardOutput().contains(name.toUtf8());
}

// --- Scenarios

void ClickTraceback()
{
    auto* const output = Output();
    const auto found = output->document()->find("line 10");
    output->setTextCursor(found);
    output->ensureCursorVisible();
    const QPoint at = output->cursorRect(found).center() - QPoint(8, 0);
    QTest::mouseClick(output->viewport(), Qt::LeftButton, {}, at);
    WaitFor("the line of the traceback",
            [] { return Front().activeView()->cursorPosition().line() == 9; });
}

QWidget* DeviceWindow()
{
    for (auto* const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->findChild<QAbstractItemView*>("listing") != nullptr) {
            return widget;
        }
    }
    return nullptr;
}

bool HasMnemonic(const QString& text)
{
    return QString(text).remove("&&").contains('&');
}

void ChooseItem(const QString& beginning)
{
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    for (auto* const action : menu->actions()) {
        Require(!HasMnemonic(action->text()), "no mnemonic: " + action->text());
        if (action->text().startsWith(beginning)) {
            menu->setActiveAction(action);
        }
    }
    QTest::keyClick(menu, Qt::Key_Return);
}

// In the menu of all commands. Kate must not add mnemonics to what the plug-in shows.
void ChooseCommand(const QString& beginning)
{
    When([] { return QApplication::activePopupWidget() != nullptr; },
         [=] { ChooseItem(beginning); });
    Press(Qt::Key_M);
}

void RunFromMenuWithHiddenOutput()
{
    Front().hideToolView(Output()->parentWidget()->parentWidget());
    WaitFor("the hidden output", [] { return !Output()->isVisible(); });
    ChooseCommand("Run");
    WaitFor("the output of the second run", [] { return CountOutput("ZeroDivisionError") == 2; });
    Require(Output()->isVisible(), "the visible output");
}

void OpenDeviceWindow()
{
    ChooseCommand("Open Device window");
    WaitFor("the Device window", [] { return DeviceWindow() != nullptr; });
    WaitFor("its list", [] {
        const auto* const list = DeviceWindow()->findChild<QAbstractItemView*>("listing");
        return list->model()->rowCount() > 0;
    });
    KAcceleratorManager::manage(DeviceWindow());  // As Kate does, at some time.
    for (const auto* const button : DeviceWindow()->findChildren<QAbstractButton*>()) {
        Require(!HasMnemonic(button->text()), "no mnemonic: " + button->text());
    }
}

QToolButton* BoardCorner()
{
    return Front().window()->findChild<QToolButton*>("board");
}

// By its button, and as by keys.
void OpenBoardMenu()
{
    Require(BoardCorner()->menu() != nullptr, "the menu of the board's button");
    Trigger("quilp_board");
    WaitFor("the board's menu", [] { return QApplication::activePopupWidget() != nullptr; });
    QApplication::activePopupWidget()->close();
}

void RunAndBrowse()
{
    Require(BoardCorner()->text() == "Virtual board", "the board that the environment names");
    Press(Qt::Key_R);
    WaitForOutput("ZeroDivisionError");
    Require(CountOutput(Front().activeView()->document()->url().toLocalFile()) == 3,
            "the document's path in each line of the traceback");
    ClickTraceback();
    RunFromMenuWithHiddenOutput();
    OpenDeviceWindow();
    QFile maps("/proc/self/maps");
    const char* const other = QT_VERSION_MAJOR == 6 ? "libQt5Core" : "libQt6Core";
    Require(maps.open(QFile::ReadOnly) && !maps.readAll().contains(other), "one version of Qt");
}

void EndInFlood()
{
    Press(Qt::Key_R);
    WaitForOutput("flood 30000");
}

// The plug-in's entry in Kate's settings.
QModelIndex FindPluginEntry()
{
    for (const auto* const widget : QApplication::allWidgets()) {
        const auto* const list = qobject_cast<const QTreeView*>(widget);
        const auto* const entries = list != nullptr ? list->model() : nullptr;
        const auto found = entries == nullptr ? QModelIndexList()
                                              : entries->match(entries->index(0, 0),
                                                               Qt::DisplayRole, "MicroPython");
        if (!found.isEmpty()) {
            return found.constFirst();
        }
    }
    return {};
}

void CheckPluginEntry(bool isChecked)
{
    const QModelIndex entry = FindPluginEntry();
    const_cast<QAbstractItemModel*>(entry.model())
        ->setData(entry, isChecked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
    if (auto* const dialog = QApplication::activeModalWidget()) {
        auto* const buttons = dialog->findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    }
}

// In Kate's settings. Newer versions of Kate wait for them to be confirmed.
void SetLoaded(bool isLoaded)
{
    When([] { return FindPluginEntry().isValid(); }, [=] { CheckPluginEntry(isLoaded); });
    Trigger("options_configure");
    WaitFor("the plug-in's state",
            [=] { return (Kate().plugin("katequilpplugin") != nullptr) == isLoaded; });
}

void UnloadAndReload()
{
    Press(Qt::Key_R);
    WaitForOutput("flood 1\n");
    SetLoaded(false);
    Require(Output() == nullptr && FindAction(Front(), "QuilpRun") == nullptr, "no trace");
    WaitFor("no program", [] { return !IsProcessRunning("mpremote"); });
    SetLoaded(true);
    Press(Qt::Key_R);
    WaitForOutput("flood 1\n");
}

// Closes the older window first, then the newer one, which quits Kate.
void CloseWindows()
{
    auto& first = Front();
    Enter("'first'");
    Press(Qt::Key_R);
    WaitForOutput("flood 1\n");
    Trigger("view_new_view");
    WaitFor("two windows", [] { return Kate().mainWindows().size() == 2; });
    auto& second = *Kate().mainWindows()[Kate().mainWindows()[0] == &first ? 1 : 0];
    second.openUrl(first.activeView()->document()->url());  // Newer versions of Kate do not.
    WaitFor("the output in both", [&] {
        return second.window()
            ->findChild<QPlainTextEdit*>("micropython_output")
            ->toPlainText()
            .contains("flood 1\n");
    });
    first.window()->close();
    WaitFor("one window", [] { return Kate().mainWindows().size() == 1; });
    Press(Qt::Key_S);
    WaitFor("the stop", [] { return !FindAction(Front(), "QuilpStop")->isEnabled(); });
    OpenBoardMenu();
    Enter("'second'");
}

const std::map<std::string, std::function<void()>> kScenarios{
    {"RunAndBrowse", RunAndBrowse},
    {"EndInFlood", EndInFlood},
    {"UnloadAndReload", UnloadAndReload},
    {"CloseWindows", CloseWindows},
};

void Perform()
{
    WaitFor("a document", [] { return Front().activeView() != nullptr; });
    kScenarios.at(std::getenv("QUILP_TEST_SCENARIO"))();
    std::fprintf(stderr, "driver: done\n");
    Trigger("file_quit");
}

}  // namespace

class Driver final : public KTextEditor::Plugin {
    Q_OBJECT

  public:
    explicit Driver(QObject* parent, const QVariantList& /*arguments*/ = {})
        : KTextEditor::Plugin(parent)
    {
    }

    QObject* createView(KTextEditor::MainWindow* window) override
    {
        if (!std::exchange(isStarted_, true)) {
            QTimer::singleShot(0, this, Perform);
        }
        return new QObject(window);
    }

  private:
    bool isStarted_ = false;
};

K_PLUGIN_FACTORY_WITH_JSON(DriverFactory, "driver.json", registerPlugin<Driver>();)

#include "driver.moc"

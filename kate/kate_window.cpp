#include "kate_window.h"

#include "action_icons.h"
#include "board_button.h"
#include "board_menu.h"
#include "board_panel.h"
#include "board_prompt.h"
#include "command_activity.h"
#include "input_field.h"
#include "kate_host.h"
#include "output_pane.h"

#include <KAcceleratorManager>
#include <KActionCollection>
#include <KConfig>
#include <KSyntaxHighlighting/Theme>
#include <KTextEditor/Document>
#include <KTextEditor/Editor>
#include <KTextEditor/Plugin>
#include <KTextEditor/View>
#include <KXMLGUIFactory>

#include <QAction>
#include <QEvent>
#include <QMenuBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr const char* kHistoryEntry = "PromptHistory";

// Kate uses these keys for nothing else. The user may give keys to the other actions, too.
QKeySequence DefaultKeys(const QString& action)
{
    static const QHash<QString, QString> keys{
        {"QuilpRun", "Ctrl+Alt+R"}, {"QuilpStop", "Ctrl+Alt+S"}, {"quilp_menu", "Ctrl+Alt+M"}};
    return keys.value(action);
}

// Where a menu of the action opens: its button in a tool bar, or else the menu bar.
const QWidget& PlaceOfMenu(const QWidget& window, QAction* action)
{
    for (const auto* const bar : window.findChildren<QToolBar*>()) {
        const auto* const button = bar->widgetForAction(action);
        if (button != nullptr && button->isVisible()) {
            return *button;
        }
    }
    const auto* const menuBar = window.findChild<QMenuBar*>();
    return menuBar != nullptr ? *menuBar : window;
}

// The selected lines, with the indentation of the first one if it is not selected in part.
KTextEditor::Range WithIndentation(KTextEditor::Range range, const KTextEditor::View& view)
{
    const KTextEditor::Cursor start(range.start().line(), 0);
    const QString before = view.document()->text({start, range.start()});
    if (before.trimmed().isEmpty()) {
        range.setStart(start);
    }
    return range;
}

}  // namespace

KateWindow::KateWindow(KateHost& host, KTextEditor::Plugin& plugin,
                       KTextEditor::MainWindow& mainWindow)
    : QObject(&mainWindow), host_(host), mainWindow_(mainWindow)
{
    setComponentName(QStringLiteral("katequilpplugin"), tr("MicroPython"));
    setXMLFile(QStringLiteral("ui.rc"));
    MakeToolView(plugin);
    MakeBoardView(plugin);
    ConnectInput();
    AddCommands();
    AddActions();
    mainWindow_.guiFactory()->addClient(this);
    plugActionList(QStringLiteral("plugin_commands"), commandActions_);
    connect(&host_.monitor(), &CommandMonitor::Changed, this, &KateWindow::ShowState);
    ShowState();
    mainWindow_.window()->installEventFilter(this);
    connect(&mainWindow_, &KTextEditor::MainWindow::viewChanged, this,
            [this] { host_.Use(*this); });
    connect(KTextEditor::Editor::instance(), &KTextEditor::Editor::configChanged, this,
            &KateWindow::ShowColors);
    ShowColors();
    host_.Use(*this);
}

KateWindow::~KateWindow()
{
    if (toolView_) {
        KeepPromptHistory();
    }
    host_.Remove(*this);
    mainWindow_.guiFactory()->removeClient(this);
    delete prompt_;
    delete toolView_;
    delete boardView_;
}

// Another window may have kept its own inputs since this one was opened.
void KateWindow::KeepPromptHistory()
{
    auto& settings = host_.settings();
    settings.config()->reparseConfiguration();
    const QStringList kept = settings.readEntry(kHistoryEntry, QStringList());
    settings.writeEntry(kHistoryEntry, field_->PromptHistoryAppendedTo(kept));
    settings.sync();
}

void KateWindow::MakeToolView(KTextEditor::Plugin& plugin)
{
    toolView_ = mainWindow_.createToolView(&plugin, QStringLiteral("katequilpplugin"),
                                           KTextEditor::MainWindow::Bottom,
                                           ActionIcon(Action::Board), tr("MicroPython"));
    auto* const content = new QWidget(toolView_);
    KAcceleratorManager::setNoAccel(content);
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    pane_ = new OutputPane(host_.output(), content);
    pane_->setObjectName("micropython_output");
    pane_->setAccessibleName(tr("Output"));
    column->addWidget(pane_, 1);
    auto* const row = new QHBoxLayout;
    column->addLayout(row);
    field_ = new InputField(content);
    field_->SetPromptHistory(host_.settings().readEntry(kHistoryEntry, QStringList()));
    row->addWidget(field_, 1);
    auto* const activity = new CommandActivity(host_.monitor(), content);
    connect(&host_.boardActions(), &BoardActions::UploadNoteChanged, activity,
            &CommandActivity::SetUploadNote);
    row->addWidget(activity);
    MakeBoardMenu(*content);
    auto* const board = new BoardButton(host_.board(), boardMenu_, content);
    board->ShowLedOf(host_.pins());
    row->addWidget(board);
}

// Each window has its own menu: a button loses a menu of another window's action with that window.
void KateWindow::MakeBoardMenu(QWidget& parent)
{
    boardMenu_ = new BoardMenu(host_.boardActions(), host_.board(), &parent);
    connect(boardMenu_, &BoardMenu::DeviceWindowRequested, &host_.commands(),
            &PluginActions::OpenDeviceWindow);
}

void KateWindow::MakeBoardView(KTextEditor::Plugin& plugin)
{
    boardView_ = mainWindow_.createToolView(&plugin, QStringLiteral("katequilpplugin_board"),
                                            KTextEditor::MainWindow::Right,
                                            ActionIcon(Action::Board), tr("Virtual Board"));
    auto* const panel = new BoardPanel(host_.pins(), boardView_);
    KAcceleratorManager::setNoAccel(panel);
    boardView_->setMinimumWidth(panel->minimumWidth());
    connect(panel, &BoardPanel::AttachRequested, &host_.boardActions(),
            &BoardActions::UseVirtualBoard);
}

void KateWindow::ConnectInput()
{
    prompt_ = new BoardPrompt(
        host_.runtime(), {*field_, host_.output(), host_.tool(), host_.monitor(), host_.messages()},
        this);
    connect(field_, &InputField::Left, this, &KateWindow::FocusDocument);
    connect(pane_, &OutputPane::LinkChosen, this, [this](const QString& path, int line) {
        host_.Use(*this);
        host_.FollowLink(path, line);
    });
}

QAction* KateWindow::Add(const QString& name, const QString& text,
                         const std::function<void()>& perform)
{
    auto* const action = actionCollection()->addAction(name);
    action->setText(text);
    connect(action, &QAction::triggered, this, [this, perform] {
        host_.Use(*this);
        perform();
    });
    actionCollection()->setDefaultShortcut(action, DefaultKeys(name));
    return action;
}

void KateWindow::AddCommands()
{
    for (const auto& command : host_.commandList()) {
        const auto perform = [this, name = command.name] { host_.commands().Perform(name); };
        auto* const action =
            Add(QString::fromStdString(command.name), CommandLabel(command), perform);
        action->setToolTip(QString::fromStdString(command.description));
        if (command.name == "QuilpRun" || command.name == "QuilpStop") {
            action->setIcon(ActionIcon(command.name == "QuilpRun" ? Action::Run : Action::Stop));
        }
        commandActions_.append(action);
    }
    Add("quilp_device_window", tr("&Device Window"),
        [this] { host_.commands().OpenDeviceWindow(); });
    Add("quilp_status", tr("S&tatus"), [this] { host_.commands().ShowStatus(); });
    auto* const menu = Add("quilp_menu", tr("&All Commands…"), [this] {
        host_.commands().OpenPopUp(PlaceOfMenu(*mainWindow_.window(), action("quilp_menu")));
    });
    menu->setIcon(QIcon::fromTheme(QStringLiteral("application-menu"), ActionIcon(Action::Board)));
}

void KateWindow::AddActions()
{
    Add("quilp_target", tr("&Make This Document the Target"), [this] { host_.ToggleTarget(); });
    Add("quilp_selection", tr("&Run Selection at the Prompt"), [this] { RunSelection(); });
    Add("quilp_prompt", tr("&Go to the Prompt"), [this] {
        mainWindow_.showToolView(toolView_);
        field_->setFocus();
    });
    Add("quilp_help", tr("&Help"), [this] {
        ShowOutput();
        host_.ShowHelp();
    });
    Add("quilp_show_board", tr("Show &Virtual Board"),
        [this] { mainWindow_.showToolView(boardView_); });
    // With keys or in a tool bar, the action is triggered itself.
    auto* const board = Add("quilp_board", tr("&Board"), [this] {
        const auto& place = PlaceOfMenu(*mainWindow_.window(), action("quilp_board"));
        boardMenu_->popup(place.mapToGlobal(QPoint(0, place.height())));
    });
    board->setMenu(boardMenu_);
}

// What runs can be stopped.
void KateWindow::ShowState()
{
    if (auto* const stop = actionCollection()->action("QuilpStop")) {
        stop->setEnabled(host_.monitor().IsRunning());
    }
}

QKeySequence KateWindow::Shortcut(const std::string& command) const
{
    const auto* const action = actionCollection()->action(QString::fromStdString(command));
    return action != nullptr ? action->shortcut() : QKeySequence();
}

void KateWindow::ShowOutput()
{
    if (!toolView_) {
        return;  // Kate is closing the window.
    }
    QPointer<QWidget> focused = mainWindow_.window()->focusWidget();
    mainWindow_.showToolView(toolView_);
    if (focused) {
        focused->setFocus();
    }
}

void KateWindow::FocusDocument()
{
    if (auto* const view = mainWindow_.activeView()) {
        view->setFocus();
    }
}

void KateWindow::RunSelection()
{
    const auto* const view = mainWindow_.activeView();
    if (view == nullptr) {
        return;
    }
    const auto range = view->selectionRange();
    const int line = view->cursorPosition().line();
    const QString code = range.isEmpty() ? view->document()->line(line)
                                         : view->document()->text(WithIndentation(range, *view));
    if (!code.trimmed().isEmpty()) {
        ShowOutput();
        prompt_->RunLines(code);
    }
}

void KateWindow::ShowColors()
{
    using KSyntaxHighlighting::Theme;
    const auto* const editor = KTextEditor::Editor::instance();
    const auto theme = editor->theme();
    QPalette palette = pane_->palette();
    palette.setColor(QPalette::Base, QColor::fromRgba(theme.editorColor(Theme::BackgroundColor)));
    palette.setColor(QPalette::Text, QColor::fromRgba(theme.textColor(Theme::Normal)));
    palette.setColor(QPalette::Highlight,
                     QColor::fromRgba(theme.editorColor(Theme::TextSelection)));
    palette.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
    palette.setColor(QPalette::PlaceholderText, QColor::fromRgba(theme.textColor(Theme::Comment)));
    palette.setColor(QPalette::Link, QColor::fromRgba(theme.textColor(Theme::Error)));
    pane_->SetColors(palette, editor->font());
    field_->setPalette(palette);
    field_->SetTextFont(editor->font());
}

bool KateWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowActivate) {
        host_.Use(*this);
    }
    return QObject::eventFilter(watched, event);
}

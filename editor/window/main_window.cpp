#include "main_window.h"

#include "board_actions.h"
#include "board_button.h"
#include "board_documents.h"
#include "board_menu.h"
#include "board_panel.h"
#include "board_prompt.h"
#include "board_questions.h"
#include "command_activity.h"
#include "command_progress.h"
#include "commands_menu.h"
#include "control_tool_bar.h"
#include "dropped_files.h"
#include "editor_menus.h"
#include "editor_status_bar.h"
#include "editor_style.h"
#include "file_actions.h"
#include "find_bar.h"
#include "front_saver.h"
#include "help_window.h"
#include "input_field.h"
#include "message_area.h"
#include "path_text.h"
#include "pins_client.h"
#include "plugin_actions.h"
#include "session_keeper.h"
#include "shortcut_code.h"
#include "text_actions.h"
#include "text_editor.h"
#include "worksheet_actions.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

#include <chrono>
#include <cstdio>
#include <utility>

namespace {

constexpr std::chrono::seconds kDiskCheckInterval{1};
constexpr QSize kDefaultSize(1000, 760);
constexpr QSize kWindowBorder(16, 48);  // An upper limit of the frame that desktops draw.

// In a window title Qt replaces "[*]" with its modification mark and "[*][*]" with "[*]".
QString EscapeForTitle(QString name)
{
    return name.replace("[*]", "[*][*]");
}

// Places the second widget below the first, which takes the space, with a line between them.
void Stack(QWidget& first, QWidget& second, QWidget& parent)
{
    auto* const column = new QVBoxLayout(&parent);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(1);
    column->addWidget(&first, 1);
    column->addWidget(&second);
    parent.setBackgroundRole(QPalette::Mid);
    parent.setAutoFillBackground(true);
}

std::vector<NamedShortcut> DefaultShortcuts()
{
    std::vector<NamedShortcut> shortcuts;
    for (const auto& command : kPluginCommands) {
        if (!command.name.empty()) {
            shortcuts.push_back({std::string(command.name), command.defaultShortcut});
        }
    }
    return shortcuts;
}

}  // namespace

MainWindow::MainWindow(const PluginModule& plugin, Runtime& runtime, const EditorPaths& paths)
    : plugin_(plugin),
      runtime_(runtime),
      folders_(paths.folders),
      settings_(paths.folders.pluginSettings()),
      host_(
          plugin, runtime, [this](const std::string& text) { worksheet_->Append(text); }, this),
      tool_(runtime, ResourceFolder(plugin.bundle()) + "/mpremote/mpremote.py",
            [this](const std::string& text) { worksheet_->Append(text); }),
      monitor_(runtime, nullptr),
      shortcuts_({}, {}),
      project_(new Project(this)),
      board_(new BoardMonitor(paths.boardProgram, paths.boardFolder, paths.findPorts, this)),
      pins_(new PinsClient(this))
{
    pins_->Follow(*board_);
    setAcceptDrops(true);
    setObjectName("editor");
    MakeCentralWidget(paths.folders.state + "/recovery");
    MakeActions();
    MakeToolBar();
    ConnectParts();
    resize(kDefaultSize.boundedTo(screen()->availableSize() - kWindowBorder));
}

MainWindow::~MainWindow()
{
    // Destroyed first, because their last signals still use the other parts.
    delete worksheetActions_;
    delete takeCentralWidget();
}

void MainWindow::MakeCentralWidget(const std::string& recoveryRoot)
{
    auto* const documents = new QWidget(this);
    auto* const column = new QVBoxLayout(documents);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    messages_ = new MessageArea(documents);
    tabs_ = new DocumentTabs(recoveryRoot, documents);
    findBar_ = new FindBar(documents);
    findBar_->hide();
    column->addWidget(messages_);
    column->addWidget(tabs_, 1);
    column->addWidget(findBar_);

    auto* const console = new QWidget(this);
    worksheet_ = new Worksheet(console);
    worksheet_->setAccessibleName(tr("Worksheet"));
    input_ = new InputField(console);
    Stack(*worksheet_, *input_, *console);
    splitter_ = new QSplitter(Qt::Vertical, this);
    splitter_->setHandleWidth(5);  // Only one pixel of it is drawn.
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(documents);
    splitter_->addWidget(console);
    splitter_->setSizes({460, 230});  // They keep this ratio in a window of any size.
    columns_ = new QSplitter(Qt::Horizontal, this);
    columns_->setHandleWidth(5);
    columns_->setChildrenCollapsible(false);
    boardPanel_ = new BoardPanel(*pins_, columns_);
    boardPanel_->hide();
    columns_->addWidget(splitter_);
    columns_->addWidget(boardPanel_);
    columns_->setStretchFactor(0, 1);
    setCentralWidget(columns_);
}

void MainWindow::MakeActions()
{
    files_ = new FileActions(*tabs_, *project_, *messages_, this);
    texts_ = new TextActions(*tabs_, *worksheet_, *findBar_, *splitter_);
    texts_->setParent(this);
    frontSaver_ = new FrontSaver(*tabs_, *messages_, this);
    commands_ = new PluginActions(
        host_, *messages_, [this] { return frontSaver_->Save(); }, this);
    worksheetActions_ = new WorksheetActions(*worksheet_, *tabs_, *project_, *board_, *messages_);
    worksheetActions_->setParent(this);
    prompt_ = new BoardPrompt(runtime_, {*input_, *worksheet_, tool_, monitor_, *messages_}, this);
    worksheetActions_->SetProgramFolder(ResourceFolder(plugin_.bundle()) + "/../../bin");
    const BoardActions::Parts boardParts{
        .window = [this] { return this; },
        .tool = tool_,
        .board = *board_,
        .output = *worksheet_,
        .messages = *messages_,
    };
    boardActions_ = new BoardActions(boardParts, this);
    new BoardQuestions(*boardActions_, monitor_, boardParts, this);
    boardDocuments_ = new BoardDocuments(*tabs_, tool_, *board_, this);
    const EditorParts parts{.window = *this,
                            .splitter = *splitter_,
                            .columns = *columns_,
                            .boardPanel = *boardPanel_,
                            .messages = *messages_,
                            .tabs = *tabs_,
                            .findBar = *findBar_,
                            .worksheet = *worksheet_,
                            .input = *input_,
                            .project = *project_,
                            .board = *board_,
                            .files = *files_,
                            .texts = *texts_,
                            .frontSaver = *frontSaver_,
                            .commands = *commands_,
                            .worksheetActions = *worksheetActions_,
                            .prompt = *prompt_,
                            .boardActions = *boardActions_,
                            .boardDocuments = *boardDocuments_};
    menus_ = new EditorMenus(parts, shortcuts_);
    session_ = std::make_unique<SessionKeeper>(folders_, shortcuts_, parts);
    MakeStatusBar();
}

void MainWindow::MakeStatusBar()
{
    auto* const activity = new CommandActivity(monitor_, this);
    connect(boardActions_, &BoardActions::UploadNoteChanged, activity,
            &CommandActivity::SetUploadNote);
    auto* const board = new BoardButton(*board_, &menus_->boardMenu(), this);
    board->ShowLedOf(*pins_);
    status_ = new EditorStatusBar(activity, board, this);
    setStatusBar(status_);
}

void MainWindow::MakeToolBar()
{
    toolBar_ = new ControlToolBar(this);
    addToolBar(toolBar_);
    toolBar_->AddButton(Action::New, tr("New"), [this] { tabs_->New(); });
    toolBar_->AddButton(Action::Open, tr("Open"), [this] { files_->OpenByDialog(); });
    menus_->AddDocumentAction(
        toolBar_->AddButton(Action::Save, tr("Save"), [this] { tabs_->saver().SaveFront(); }));
    toolBar_->addSeparator();
    progress_.reset(new CommandProgress(monitor_, {*toolBar_, *commands_, shortcuts_}));
}

void MainWindow::ConnectParts()
{
    connect(tabs_, &DocumentTabs::FrontChanged, this, &MainWindow::ShowFront);
    connect(tabs_, &DocumentTabs::Failed, messages_, &MessageArea::Report);
    connect(tabs_, &DocumentTabs::FilesDropped, this, &MainWindow::OpenFiles);
    connect(boardPanel_, &BoardPanel::AttachRequested, boardActions_,
            &BoardActions::UseVirtualBoard);
    connect(project_, &Project::Changed, this, &MainWindow::ShowProject);
    connect(&menus_->commandsMenu(), &CommandsMenu::Chosen, commands_, &PluginActions::Perform);
    connect(menus_, &EditorMenus::CommandMenuRequested, this,
            [this] { commands_->OpenPopUp(toolBar_->FirstControl()); });
    connect(menus_, &EditorMenus::HelpRequested, this, &MainWindow::ShowHelp);
    connect(toolBar_, &ControlToolBar::ControlPressed, commands_, &PluginActions::PressControl);
    connect(toolBar_, &ControlToolBar::MenuRequested, commands_, &PluginActions::OpenPopUp);
    connect(input_, &InputField::Left, texts_, &TextActions::GoToDocument);
    connect(worksheet_, &QsciScintilla::SCN_ZOOM, this, &MainWindow::ShowInputFont);
    ShowInputFont();
    connect(&diskTimer_, &QTimer::timeout, this, &MainWindow::CheckDisk);
    diskTimer_.start(kDiskCheckInterval);
    controlsTimer_.setSingleShot(true);
    connect(&controlsTimer_, &QTimer::timeout, this, &MainWindow::ShowControls);
    runtime_.handlers.idle = [this] { worksheet_->EndOutput(); };
    runtime_.handlers.windowClosed = [this] { SavePluginSettings(); };
    runtime_.handlers.warning = [this](const std::string& text) {
        messages_->Report(QString::fromStdString(text));
    };
}

std::expected<void, std::string> MainWindow::Start()
{
    const auto problem = settings_.Load();
    host_.SetSettings(&settings_);
    host_.SetShortcuts(
        [this](const std::string& command) { return ShortcutCode(shortcuts_.Shortcut(command)); });
    if (const auto started = host_.Start(); !started) {
        return started;
    }
    shortcuts_ = Shortcuts(DefaultShortcuts(), menus_->ReservedShortcuts());
    session_->Restore();
    menus_->commandsMenu().AddCommands(host_.commands());
    if (problem) {
        messages_->Report(QString::fromStdString(*problem));
    }
    if (const QStringList names = tabs_->copies().FindRecoverable(); !names.isEmpty()) {
        messages_->OfferRecovery(
            names, [this] { tabs_->copies().Recover(); },
            [this] { tabs_->copies().DiscardRecovered(); });
    }
    return {};
}

void MainWindow::OpenFiles(const QStringList& files)
{
    files_->Open(files);
    if (files.isEmpty() && tabs_->count() == 0) {
        session_->ReopenDocuments();
    }
    if (tabs_->count() == 0) {
        tabs_->New();
    }
    ShowControls();  // At once, so that the tool bar is complete when the window is shown.
}

void MainWindow::ShowBoardPanel()
{
    boardPanel_->show();
}

void MainWindow::ReportPluginError(const std::string& error)
{
    messages_->Report(tr("The plug-in failed: %1").arg(QString::fromStdString(error)));
}

void MainWindow::ShowFront()
{
    auto* const page = tabs_->FrontPage();
    const auto* const front = tabs_->Front();
    const std::string path = front != nullptr ? RunPathOf(*front) : std::string();
    if (front != nullptr && path.empty() && !front->IsPristine()) {
        host_.SetDocument({}, true);
    } else {
        host_.SetDocument(path);
    }
    if (findBar_->editor() != worksheet_) {
        findBar_->SetEditor(page != nullptr ? &page->editor() : nullptr);
    }
    setWindowTitle(front != nullptr ? EscapeForTitle(TitleOf(*front)) + "[*] – Quilp" : "Quilp");
    setWindowModified(front != nullptr && front->IsModified());
    menus_->EnableDocumentActions(page != nullptr);
    if (page != nullptr) {
        ConnectFront();
        page->editor().zoomTo(texts_->zoom());
    }
    status_->ShowDocument(page);
    UpdateControls();
}

void MainWindow::ConnectFront()
{
    auto& editor = tabs_->FrontPage()->editor();
    connect(&editor, &QsciScintilla::cursorPositionChanged, this, &MainWindow::ShowPosition,
            Qt::UniqueConnection);
    connect(&editor, &TextEditor::LongLineRefused, this, &MainWindow::OfferLongLine,
            Qt::UniqueConnection);
    connect(&editor, &QsciScintilla::SCN_ZOOM, texts_, &TextActions::AdoptZoom,
            Qt::UniqueConnection);
}

void MainWindow::OfferLongLine(const QString& text)
{
    const QPointer editor(&tabs_->FrontPage()->editor());
    messages_->OfferLongLineText([editor, text] {
        if (editor) {
            editor->Insert(text);
            editor->setFocus();
        }
    });
}

void MainWindow::ShowPosition()
{
    status_->ShowDocument(tabs_->FrontPage());
}

void MainWindow::ShowInputFont()
{
    QFont font = EditorFont();
    font.setPointSize(font.pointSize() +
                      static_cast<int>(worksheet_->SendScintilla(QsciScintilla::SCI_GETZOOM)));
    input_->SetTextFont(font);
}

void MainWindow::ShowProject()
{
    host_.SetTarget(TextToPath(project_->target()));
    host_.SetProjectTarget(TextToPath(project_->folderTarget()));
    status_->ShowProject(project_->folder(), PathToText(host_.TargetRef(0).path()));
    UpdateControls();
}

// Asks the plug-in again, because its controls depend on the front document.
void MainWindow::ShowControls()
{
    controlsTimer_.stop();
    toolBar_->ShowControls(host_.OfferedControls());
    progress_->SetRunnable(QString::fromStdString(host_.Runnable().name()));
}

void MainWindow::ShowHelp()
{
    QString text;
    Runtime::Protect([&] { text = QString::fromStdString(plugin_.Help()); });
    help_ = help_ != nullptr ? help_ : new HelpWindow(this);
    help_->Open(*menuBar(), text);
}

// Does nothing while the window is inactive or a dialog or menu is open.
void MainWindow::CheckDisk()
{
    if (isActiveWindow() && QApplication::activeModalWidget() == nullptr &&
        QApplication::activePopupWidget() == nullptr) {
        tabs_->CheckDisk();
        project_->UpdateFolderTarget();
    }
}

void MainWindow::SavePluginSettings()
{
    if (const auto saved = host_.SaveSettings(); !saved) {
        messages_->Report(QString::fromStdString(saved.error()));
    }
}

// Returns the errors as messages for the user.
QStringList MainWindow::SaveEverything()
{
    QStringList problems = session_->SaveAtExit();
    runtime_.handlers.windowClosed = {};  // The settings are saved below.
    runtime_.CloseWindows();
    if (const auto saved = host_.SaveSettings(); !saved) {
        problems.append(QString::fromStdString(saved.error()));
    }
    return problems;
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!tabs_->saver().ConfirmCloseAll()) {
        return event->ignore();
    }
    const auto problems = SaveEverything();
    if (!problems.isEmpty()) {
        QMessageBox::warning(this, tr("Quit"), problems.join('\n'));
    }
    tabs_->CloseAll();
    event->accept();
    Q_EMIT Closed();
}

void MainWindow::QuitWithoutAsking()
{
    tabs_->copies().Keep();
    const auto problems = SaveEverything();
    if (!problems.isEmpty()) {
        std::fprintf(stderr, "quilp-editor: %s\n", qPrintable(problems.join("; ")));
    }
    Q_EMIT Closed();
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && tabs_ != nullptr) {
        CheckDisk();
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!LocalFiles(*event->mimeData()).isEmpty()) {
        AcceptAsCopy(event);
    }
}

void MainWindow::dropEvent(QDropEvent* event)
{
    OpenFiles(LocalFiles(*event->mimeData()));
    AcceptAsCopy(event);
}

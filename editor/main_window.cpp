#include "main_window.h"

#include "commands_menu.h"
#include "control_tool_bar.h"
#include "default_shortcuts.h"
#include "dropped_files.h"
#include "editor_status_bar.h"
#include "file_bytes.h"
#include "find_bar.h"
#include "message_bar.h"
#include "text_editor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace {

constexpr std::chrono::seconds kLookAtDiskEvery{1};
constexpr int kMostRecent = 12;
constexpr QSize kDefaultSize(1000, 760);
constexpr QSize kWindowBorder(16, 48);  // More than desktops draw around a window.

// Qt puts its own mark in the place of one "[*]" only.
QString TitleOf(QString name)
{
    return name.replace("[*]", "[*][*]");
}

}  // namespace

MainWindow::MainWindow(const PluginModule& plugin, Runtime& runtime, const EditorPlaces& places)
    : plugin_(plugin),
      runtime_(runtime),
      places_(places),
      settings_(places.folders.config + "/plugins.settings"),
      host_(
          plugin, runtime, [this](const std::string& text) { worksheet_->Append(text); }, this),
      shortcuts_({}, {}),
      project_(new Project(this)),
      board_(new BoardMonitor(places.boardProgram, places.boardFolder, this)),
      shell_(new UserShell(this))
{
    setAcceptDrops(true);
    setObjectName("editor");
    MakeCentralWidget();
    MakeMenus();
    MakeToolBar();
    ConnectParts();
    resize(kDefaultSize.boundedTo(screen()->availableSize() - kWindowBorder));
}

MainWindow::~MainWindow()
{
    // While there is still somebody for their last signals.
    delete shell_;
    delete takeCentralWidget();
}

void MainWindow::MakeCentralWidget()
{
    auto* const documents = new QWidget(this);
    auto* const column = new QVBoxLayout(documents);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    messages_ = new MessageBar(documents);
    recovery_ = new MessageBar(documents);
    slowFile_ = new MessageBar(documents);
    tabs_ = new DocumentTabs(places_.folders.state + "/recovery", documents);
    findBar_ = new FindBar(documents);
    findBar_->hide();
    column->addWidget(recovery_);
    column->addWidget(messages_);
    column->addWidget(slowFile_);
    column->addWidget(tabs_, 1);
    column->addWidget(findBar_);

    worksheet_ = new Worksheet(this);
    worksheet_->setAccessibleName(tr("Worksheet"));
    splitter_ = new QSplitter(Qt::Vertical, this);
    splitter_->setHandleWidth(5);  // Of which one pixel is drawn.
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(documents);
    splitter_->addWidget(worksheet_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setSizes({500, 190});
    setCentralWidget(splitter_);
}

void MainWindow::ConnectParts()
{
    connect(tabs_, &DocumentTabs::FrontChanged, this, &MainWindow::ShowFront);
    connect(tabs_, &DocumentTabs::Failed, this, &MainWindow::Tell);
    connect(tabs_, &DocumentTabs::TooSlow, this, &MainWindow::OfferSlowFile);
    connect(tabs_, &DocumentTabs::FilesDropped, this, &MainWindow::OpenFiles);
    connect(tabs_, &DocumentTabs::Opened, this, &MainWindow::NoteRecent);
    connect(project_, &Project::Changed, this, &MainWindow::ShowProject);
    connect(board_, &BoardMonitor::Changed, this, [this] { status_->ShowBoard(board_->board()); });
    connect(board_, &BoardMonitor::Failed, this, &MainWindow::Tell);
    connect(worksheet_, &Worksheet::LinkChosen, this, &MainWindow::FollowLink);
    connect(worksheet_, &Worksheet::RunRequested, this, &MainWindow::RunLine);
    connect(shell_, &UserShell::Output, this,
            [this](const std::string& text) { worksheet_->Append(text); });
    connect(commandsMenu_, &CommandsMenu::Chosen, this, &MainWindow::Perform);
    connect(toolBar_, &ControlToolBar::ControlPressed, this, &MainWindow::PressControl);
    connect(toolBar_, &ControlToolBar::MenuRequested, this, &MainWindow::OpenPopUp);
    connect(&diskTimer_, &QTimer::timeout, this, &MainWindow::CheckDisk);
    diskTimer_.start(kLookAtDiskEvery);
    runtime_.SetWindowClosedHandler([this] { SavePluginSettings(); });
    status_->ShowBoard(board_->board());
}

void MainWindow::NoteRecent(const QString& path)
{
    session_.recent.removeAll(path);
    session_.recent.prepend(path);
    session_.recent = session_.recent.mid(0, kMostRecent);
}

std::expected<void, std::string> MainWindow::Start()
{
    const auto problem = settings_.Load();
    host_.SetSettings(&settings_);
    host_.SetShortcuts(&shortcuts_);
    if (const auto started = host_.Start(); !started) {
        return started;
    }
    shortcuts_ = Shortcuts(kDefaultShortcuts, OwnShortcuts());
    auto loaded = LoadSession(SessionPath(), shortcuts_);
    commandsMenu_->AddCommands(host_.commands());
    Restore(loaded.session);
    if (problem) {
        Tell(QString::fromStdString(*problem));
    }
    if (!loaded.problem.isEmpty()) {
        Tell(loaded.problem);
    }
    OfferRecovery();
    return {};
}

std::string MainWindow::SessionPath() const
{
    return places_.folders.config + "/editor.ini";
}

std::string MainWindow::WorksheetPath() const
{
    return places_.folders.state + "/worksheet.txt";
}

Session MainWindow::Current() const
{
    Session session = session_;
    session.geometry = saveGeometry();
    session.splitter = splitter_->saveState();
    session.folder = project_->folder();
    session.target = project_->target();
    session.files = tabs_->Paths();
    const auto* const front = tabs_->Front();
    session.front = front != nullptr ? QString::fromStdString(front->path()) : QString();
    return session;
}

void MainWindow::Restore(const Session& session)
{
    session_ = session;
    restoreGeometry(session.geometry);
    splitter_->restoreState(session.splitter);
    SetEditorAppearance(session.appearance);
    project_->SetFolder(session.folder);
    project_->SetTarget(session.target);
    RestoreWorksheet();
}

void MainWindow::RestoreWorksheet()
{
    std::error_code ignored;
    if (!std::filesystem::exists(WorksheetPath(), ignored)) {
        return;
    }
    const auto bytes = ReadFileBytes(WorksheetPath());
    if (bytes && bytes->isValidUtf8()) {
        return worksheet_->SetContent(QString::fromUtf8(*bytes));
    }
    const auto aside = SetAside(WorksheetPath());
    Tell(QString::fromStdString(aside ? "The worksheet cannot be read and was set aside as " +
                                            *aside + "."
                                      : "The worksheet cannot be read: " + aside.error() + "."));
}

void MainWindow::OpenFiles(const QStringList& files)
{
    const auto& wanted = files.isEmpty() && tabs_->count() == 0 ? session_.files : files;
    for (const auto& path : wanted) {
        if (QFileInfo(path).isDir()) {
            project_->SetFolder(path);
            continue;
        }
        // What is gone since last time is no reason for a message.
        if (!files.isEmpty() || QFileInfo::exists(path)) {
            tabs_->Open(path);
        }
    }
    if (files.isEmpty() && QFileInfo::exists(session_.front)) {
        tabs_->Open(session_.front);
    }
    if (tabs_->count() == 0) {
        tabs_->New();
    }
    ZoomTo(session_.zoom);
}

void MainWindow::OfferRecovery()
{
    const QStringList names = tabs_->FindRecovered();
    if (names.isEmpty()) {
        return;
    }
    recovery_->Ask(tr("The editor ended before this was saved: %1.").arg(names.join(", ")),
                   {{tr("Recover"), [this] { tabs_->Recover(); }},
                    {tr("Discard"), [this] { tabs_->DiscardRecovered(); }},
                    {tr("Later"), [] {}}});
}

void MainWindow::OfferSlowFile(const QString& path, qint64 line)
{
    slowFile_->Ask(
        tr("Line %1 of %2 is so long that the window would stand still at every key.")
            .arg(line)
            .arg(path),
        {{tr("Open It"), [this, path] { tabs_->Open(path, DocumentTabs::LongLines::Accept); }},
         {tr("Leave It"), [] {}}});
}

// What was said before and is not yet read stays.
void MainWindow::Tell(const QString& message)
{
    constexpr int kMostLines = 5;
    QStringList lines =
        messages_->IsAsking() ? messages_->accessibleName().split('\n') : QStringList();
    lines.removeAll(message);
    lines.append(message);
    messages_->Ask(lines.mid(std::max<qsizetype>(lines.size() - kMostLines, 0)).join('\n'),
                   {{tr("OK"), [] {}}});
}

void MainWindow::GoToMessage()
{
    for (const auto* const bar : findChildren<MessageBar*>()) {
        if (bar->isVisible()) {
            bar->findChild<QPushButton*>()->setFocus();
            return;
        }
    }
}

void MainWindow::TellOfPlugin(const std::string& error)
{
    Tell(tr("The plug-in failed: %1").arg(QString::fromStdString(error)));
}

void MainWindow::ShowFront()
{
    auto* const page = tabs_->FrontPage();
    const auto* const front = tabs_->Front();
    host_.SetDocument(front != nullptr ? front->path() : std::string());
    if (findBar_->editor() != worksheet_) {
        findBar_->SetEditor(page != nullptr ? &page->editor() : nullptr);
    }
    setWindowTitle(front != nullptr ? TitleOf(front->Name()) + "[*] – Quilp" : "Quilp");
    setWindowModified(front != nullptr && front->IsModified());
    for (auto* const action : documentActions_) {
        action->setEnabled(page != nullptr);
    }
    if (page != nullptr) {
        ConnectFront();
        page->editor().zoomTo(session_.zoom);
    }
    status_->ShowDocument(page);
    ShowControls();
}

void MainWindow::ConnectFront()
{
    auto& editor = tabs_->FrontPage()->editor();
    connect(&editor, &QsciScintilla::cursorPositionChanged, this, &MainWindow::ShowPosition,
            Qt::UniqueConnection);
    connect(&editor, &QsciScintilla::SCN_ZOOM, this, &MainWindow::TakeZoom, Qt::UniqueConnection);
}

void MainWindow::ShowPosition()
{
    status_->ShowDocument(tabs_->FrontPage());
}

void MainWindow::ShowProject()
{
    host_.SetTarget(project_->target().toStdString());
    host_.SetProjectTarget(project_->folderTarget().toStdString());
    status_->ShowProject(project_->folder(), QString::fromStdString(host_.TargetRef(0).path()));
    ShowControls();
}

// The plug-in offers its controls for the front document as it is now.
void MainWindow::ShowControls()
{
    toolBar_->ShowControls(host_.OfferedControls());
}

// While the user answers a question there is no second one.
void MainWindow::CheckDisk()
{
    if (isActiveWindow() && QApplication::activeModalWidget() == nullptr &&
        QApplication::activePopupWidget() == nullptr) {
        tabs_->CheckDisk();
        project_->FindFolderTarget();
    }
}

void MainWindow::SavePluginSettings()
{
    if (const auto saved = host_.SaveSettings(); !saved) {
        Tell(QString::fromStdString(saved.error()));
    }
}

// What could not be saved, as sentences.
QStringList MainWindow::SaveEverything(const Session& session)
{
    runtime_.SetWindowClosedHandler({});  // The settings are saved below.
    runtime_.CloseWindows();
    std::error_code ignored;
    std::filesystem::create_directories(places_.folders.state, ignored);
    QStringList problems;
    for (const auto& saved :
         {host_.SaveSettings(), SaveAtomically(WorksheetPath(), worksheet_->Content().toUtf8()),
          SaveSession(SessionPath(), session, shortcuts_)}) {
        if (!saved) {
            problems.append(QString::fromStdString(saved.error()));
        }
    }
    return problems;
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!tabs_->MayCloseAll()) {
        return event->ignore();
    }
    const auto problems = SaveEverything(Current());
    if (!problems.isEmpty()) {
        QMessageBox::warning(this, tr("Quit"), problems.join('\n'));
    }
    tabs_->CloseAll();
    event->accept();
    Q_EMIT Ended();
}

void MainWindow::EndAtOnce()
{
    tabs_->KeepCopies();
    const auto problems = SaveEverything(Current());
    if (!problems.isEmpty()) {
        std::fprintf(stderr, "quilp-editor: %s\n", qPrintable(problems.join("; ")));
    }
    Q_EMIT Ended();
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

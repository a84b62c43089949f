// The editor's menus: what stands in them, and what belongs to no other part of the window.

#include "commands_menu.h"
#include "control_tool_bar.h"
#include "editor_status_bar.h"
#include "find_bar.h"
#include "main_window.h"
#include "protect.h"
#include "text_editor.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

constexpr int kWorksheetStep = 40;  // pixels

}  // namespace

QAction* MainWindow::Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                         const std::function<void()>& action)
{
    auto* const added = menu->addAction(text);
    added->setShortcut(keys);
    connect(added, &QAction::triggered, this, action);
    return added;
}

// Of no use, and not to be chosen, while no document is open.
void MainWindow::AddForDocument(QMenu* menu, const QString& text, const QKeySequence& keys,
                                const std::function<void(DocumentPage& page)>& action)
{
    documentActions_.push_back(Add(menu, text, keys, [this, action] {
        if (auto* const page = tabs_->FrontPage()) {
            action(*page);
        }
    }));
}

void MainWindow::MakeMenus()
{
    MakeFileMenu();
    MakeEditMenu();
    MakeSearchMenu();
    MakeViewMenu();
    MakeCommandsMenu();
    MakeProjectMenu();
    MakeWorksheetMenu();
    status_ = new EditorStatusBar(MakeBoardMenu(), this);
    setStatusBar(status_);
    MakeHelpMenu();
}

void MainWindow::MakeFileMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&File"));
    Add(menu, tr("&New"), QKeySequence::New, [this] { tabs_->New(); });
    Add(menu, tr("&Open…"), QKeySequence::Open, [this] { OpenByDialog(); });
    MakeRecentMenu(menu);
    menu->addSeparator();
    AddForDocument(menu, tr("&Save"), QKeySequence::Save, [this](auto&) { tabs_->SaveFront(); });
    AddForDocument(menu, tr("Save &As…"), QKeySequence("Ctrl+Shift+S"),
                   [this](auto&) { tabs_->SaveFrontAs(); });
    AddForDocument(menu, tr("Save A&ll"), QKeySequence("Ctrl+Alt+S"),
                   [this](auto&) { tabs_->SaveAll(); });
    menu->addSeparator();
    AddForDocument(menu, tr("&Close"), QKeySequence("Ctrl+W"),
                   [this](auto&) { tabs_->Close(tabs_->currentIndex()); });
    Add(menu, tr("&Quit"), QKeySequence("Ctrl+Q"), [this] { close(); });
}

void MainWindow::MakeRecentMenu(QMenu* parent)
{
    auto* const menu = parent->addMenu(tr("Open &Recent"));
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        menu->clear();
        for (const auto& path : session_.recent) {
            const QString label = QString(path).replace('&', "&&");
            connect(menu->addAction(label), &QAction::triggered, this,
                    [this, path] { tabs_->Open(path); });
        }
    });
}

// The text that the user works in: the worksheet's or the front document's.
QsciScintilla* MainWindow::FocusedText() const
{
    if (worksheet_->hasFocus()) {
        return worksheet_;
    }
    auto* const page = tabs_->FrontPage();
    return page != nullptr ? &page->editor() : nullptr;
}

bool MainWindow::IsFindBarFocused() const
{
    const auto* const focused = QApplication::focusWidget();
    return focused != nullptr && findBar_->isAncestorOf(focused);
}

void MainWindow::MakeEditMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Edit"));
    const auto add = [&](const QString& text, const char* keys, const char* slot) {
        Add(menu, text, QKeySequence(keys), [this, slot] { Edit(slot); });
    };
    add(tr("&Undo"), "Ctrl+Z", "undo");
    add(tr("&Redo"), "Ctrl+Shift+Z", "redo");
    menu->addSeparator();
    add(tr("Cu&t"), "Ctrl+X", "cut");
    add(tr("&Copy"), "Ctrl+C", "copy");
    add(tr("&Paste"), "Ctrl+V", "paste");
    add(tr("Select &All"), "Ctrl+A", "selectAll");
    menu->addSeparator();
    AddForDocument(menu, tr("Comment or Unco&mment"), QKeySequence("Ctrl+/"),
                   [](DocumentPage& page) { page.editor().ToggleComment(); });
}

// The fields of the find bar have slots of the same names as the texts.
void MainWindow::Edit(const char* slot)
{
    auto* const target = IsFindBarFocused() ? QApplication::focusWidget() : FocusedText();
    if (target != nullptr &&
        target->metaObject()->indexOfSlot(QByteArray(slot).append("()").constData()) >= 0) {
        QMetaObject::invokeMethod(target, slot);
    }
}

void MainWindow::MakeSearchMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Search"));
    Add(menu, tr("&Find…"), QKeySequence("Ctrl+F"),
        [this] { Search([this] { findBar_->OpenForFind(); }); });
    Add(menu, tr("&Replace…"), QKeySequence("Ctrl+H"),
        [this] { Search([this] { findBar_->OpenForReplace(); }); });
    Add(menu, tr("Find &Next"), QKeySequence("F3"),
        [this] { Search([this] { findBar_->FindNext(); }); });
    Add(menu, tr("Find &Previous"), QKeySequence("Shift+F3"),
        [this] { Search([this] { findBar_->FindPrevious(); }); });
    menu->addSeparator();
    AddForDocument(menu, tr("&Go to Line…"), QKeySequence("Ctrl+G"),
                   [this](DocumentPage& page) { GoToLine(page); });
}

// In the text that the user works in, also from within the find bar.
void MainWindow::Search(const std::function<void()>& search)
{
    if (!IsFindBarFocused()) {
        findBar_->SetEditor(FocusedText());
    }
    search();
}

void MainWindow::GoToLine(DocumentPage& page)
{
    auto& editor = page.editor();
    bool accepted = false;
    const int line = QInputDialog::getInt(this, tr("Go to Line"), tr("Line:"), editor.CaretLine(),
                                          1, editor.lines(), 1, &accepted);
    if (accepted) {
        editor.GoToLine(line);
    }
}

void MainWindow::MakeViewMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&View"));
    Add(menu, tr("&Larger Text"), QKeySequence("Ctrl++"), [this] {
        ZoomTo(session_.zoom + 1);
    })->setShortcuts({QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")});
    Add(menu, tr("&Smaller Text"), QKeySequence("Ctrl+-"), [this] { ZoomTo(session_.zoom - 1); });
    Add(menu, tr("&Usual Size"), QKeySequence("Ctrl+0"), [this] { ZoomTo(0); });
    menu->addSeparator();
    Add(menu, tr("&To the Worksheet and Back"), QKeySequence("Ctrl+J"),
        [this] { SwitchToWorksheetAndBack(); });
    Add(menu, tr("&Next Document"), QKeySequence("Ctrl+PgDown"), [this] {
        tabs_->setCurrentIndex(std::min(tabs_->currentIndex() + 1, tabs_->count() - 1));
    });
    Add(menu, tr("&Previous Document"), QKeySequence("Ctrl+PgUp"),
        [this] { tabs_->setCurrentIndex(std::max(tabs_->currentIndex() - 1, 0)); });
    Add(menu, tr("To the &Message"), QKeySequence("Ctrl+M"), [this] { GoToMessage(); });
    Add(menu, tr("&Higher Worksheet"), QKeySequence("Ctrl+Shift+Up"),
        [this] { GrowWorksheet(kWorksheetStep); });
    Add(menu, tr("Lo&wer Worksheet"), QKeySequence("Ctrl+Shift+Down"),
        [this] { GrowWorksheet(-kWorksheetStep); });
    menu->addSeparator();
    MakeAppearanceMenu(menu);
}

void MainWindow::MakeAppearanceMenu(QMenu* parent)
{
    auto* const menu = parent->addMenu(tr("&Appearance"));
    for (const auto& [text, appearance] :
         {std::pair(tr("As the &Desktop"), Appearance::System),
          std::pair(tr("&Light"), Appearance::Light), std::pair(tr("D&ark"), Appearance::Dark)}) {
        auto* const action =
            Add(menu, text, {}, [this, wanted = appearance] { SetEditorAppearance(wanted); });
        action->setCheckable(true);
        connect(menu, &QMenu::aboutToShow, action, [this, action, wanted = appearance] {
            action->setChecked(session_.appearance == wanted);
        });
    }
}

void MainWindow::SetEditorAppearance(Appearance appearance)
{
    session_.appearance = appearance;
    SetAppearance(appearance);
}

void MainWindow::ZoomTo(int zoom)
{
    session_.zoom = std::clamp(zoom, kSmallestZoom, kLargestZoom);
    for (int i = 0; i < tabs_->count(); ++i) {
        static_cast<DocumentPage*>(tabs_->widget(i))->editor().zoomTo(session_.zoom);
    }
    worksheet_->zoomTo(session_.zoom);
}

// The wheel zooms one text, the others follow when they come to the front.
void MainWindow::TakeZoom()
{
    if (auto* const page = tabs_->FrontPage()) {
        const auto zoom = page->editor().SendScintilla(QsciScintilla::SCI_GETZOOM);
        session_.zoom = std::clamp(static_cast<int>(zoom), kSmallestZoom, kLargestZoom);
    }
}

void MainWindow::SwitchToWorksheetAndBack()
{
    if (worksheet_->hasFocus() && tabs_->FrontPage() != nullptr) {
        tabs_->FrontPage()->editor().setFocus();
    } else {
        worksheet_->setFocus();
    }
}

void MainWindow::GrowWorksheet(int pixels)
{
    const auto sizes = splitter_->sizes();
    splitter_->setSizes({sizes[0] - pixels, sizes[1] + pixels});
}

void MainWindow::OpenByDialog()
{
    const auto* const front = tabs_->Front();
    const QString folder = front != nullptr && !front->path().empty()
                               ? QFileInfo(QString::fromStdString(front->path())).path()
                               : project_->folder();
    const QStringList files = QFileDialog::getOpenFileNames(
        this, tr("Open"), folder, tr("Python (*.py *.pyw);;All files (*)"));
    if (!files.isEmpty()) {
        OpenFiles(files);
    }
}

void MainWindow::MakeCommandsMenu()
{
    commandsMenu_ = new CommandsMenu(shortcuts_, this);
    menuBar()->addMenu(commandsMenu_);
    Add(commandsMenu_, tr("&Menu of All Commands"), QKeySequence("Alt+Return"),
        [this] { OpenPopUp(toolBar_->FirstControl()); });
    Add(commandsMenu_, tr("&Device Window"), QKeySequence("F8"), [this] { OpenDeviceWindow(); });
    commandsMenu_->addSeparator();
    auto* const saves = Add(commandsMenu_, tr("Save &before Commands"), {}, [] {});
    saves->setCheckable(true);
    connect(saves, &QAction::toggled, this,
            [this](bool checked) { session_.savesBeforeCommands = checked; });
    connect(commandsMenu_, &QMenu::aboutToShow, saves,
            [this, saves] { saves->setChecked(session_.savesBeforeCommands); });
    Add(commandsMenu_, tr("S&hortcuts…"), {}, [this] { commandsMenu_->ChangeShortcuts(); });
}

// The editor's own and the texts', which no command of the plug-in may take.
std::vector<NamedShortcut> MainWindow::OwnShortcuts() const
{
    std::vector<NamedShortcut> own{{"Run Line or Selection", "Ctrl+Return"}};
    for (const auto* action : menuBar()->actions()) {
        own.push_back({tr("the menu %1").arg(action->text().remove('&')).toStdString(),
                       QKeySequence::mnemonic(action->text()).toString()});
    }
    for (const auto* menu : findChildren<QMenu*>()) {
        for (const auto* action : menu->actions()) {
            for (const auto& keys : action->shortcuts()) {
                own.push_back({action->text().remove('&').toStdString(),
                               keys.toString(QKeySequence::PortableText)});
            }
        }
    }
    for (const auto* command : worksheet_->standardCommands()->commands()) {
        for (const int keys : {command->key(), command->alternateKey()}) {
            own.push_back({command->description().toStdString(), QKeySequence(keys).toString()});
        }
    }
    return own;
}

void MainWindow::MakeProjectMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Project"));
    Add(menu, tr("&Open Folder…"), QKeySequence("Ctrl+Shift+O"), [this] { OpenFolderByDialog(); });
    Add(menu, tr("&Close Folder"), {}, [this] { project_->SetFolder({}); });
    menu->addSeparator();
    AddForDocument(menu, tr("Make This Document the &Target"), QKeySequence("Ctrl+T"),
                   [this](DocumentPage& page) { MakeTarget(page.document()); });
    Add(menu, tr("&No Target of Its Own"), QKeySequence("Ctrl+Shift+T"),
        [this] { project_->SetTarget({}); });
}

void MainWindow::MakeTarget(const Document& document)
{
    if (document.path().empty()) {
        return Tell(tr("The document has no file yet; save it first."));
    }
    project_->SetTarget(QString::fromStdString(document.path()));
}

void MainWindow::OpenFolderByDialog()
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("Open Folder"), project_->folder());
    if (!folder.isEmpty()) {
        project_->SetFolder(folder);
    }
}

void MainWindow::TellOfNoTraceback()
{
    Tell(tr("There is no traceback in the worksheet."));
}

void MainWindow::MakeWorksheetMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Worksheet"));
    // Its keys are the worksheet's own: in a document they mean something else.
    Add(menu, tr("&Run Line or Selection\tCtrl+Return"), {}, [this] { worksheet_->RequestRun(); });
    Add(menu, tr("&Stop What the Line Runs"), QKeySequence("Ctrl+Shift+C"),
        [this] { shell_->Stop(); });
    menu->addSeparator();
    Add(menu, tr("&Next Place in a Traceback"), QKeySequence("F4"), [this] {
        if (!worksheet_->GoToNextLink()) {
            TellOfNoTraceback();
        }
    });
    Add(menu, tr("&Previous Place in a Traceback"), QKeySequence("Shift+F4"), [this] {
        if (!worksheet_->GoToPreviousLink()) {
            TellOfNoTraceback();
        }
    });
    menu->addSeparator();
    Add(menu, tr("&Clear"), QKeySequence("Ctrl+Shift+K"), [this] { worksheet_->MakeEmpty(); });
}

QMenu* MainWindow::MakeBoardMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Board"));
    auto* const attach =
        Add(menu, tr("&Attach Virtual Board"), {}, [this] { board_->AttachVirtualBoard(); });
    auto* const unplug =
        Add(menu, tr("&Unplug Virtual Board"), {}, [this] { board_->UnplugVirtualBoard(); });
    connect(menu, &QMenu::aboutToShow, this, [this, attach, unplug] {
        attach->setEnabled(!board_->HasVirtualBoard());
        unplug->setEnabled(board_->HasVirtualBoard());
    });
    Add(menu, tr("Show the Virtual Board's &Folder"), {}, [this] { ShowBoardFolder(); });
    menu->addSeparator();
    Add(menu, tr("&Device Window"), {}, [this] { OpenDeviceWindow(); });
    return menu;
}

void MainWindow::ShowBoardFolder()
{
    const QString folder = QString::fromStdString(board_->boardFolder());
    if (!QFileInfo(folder).isDir() || !QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
        Tell(tr("The virtual board's files are in %1.").arg(folder));
    }
}

void MainWindow::MakeHelpMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Help"));
    Add(menu, tr("&Plug-in Help"), QKeySequence("F1"), [this] { ShowPluginHelp(); });
    Add(menu, tr("&About Quilp"), {}, [this] { ShowAbout(); });
}

void MainWindow::ShowPluginHelp()
{
    QString text;
    Protect([&] { text = QString::fromStdString(plugin_.Help()); });
    QMessageBox box(QMessageBox::Information, tr("Plug-in Help"), text, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void MainWindow::ShowAbout()
{
    QMessageBox::about(
        this, tr("About Quilp"),
        tr("<b>Quilp %1</b><p>Runs the Python document you are editing on a MicroPython board.</p>"
           "<p>The sources are under the MIT licence; this program, since it contains QScintilla, "
           "is under the GNU General Public Licence, version 3.</p>")
            .arg(QUILP_VERSION));
}

void MainWindow::MakeToolBar()
{
    toolBar_ = new ControlToolBar(this);
    addToolBar(toolBar_);
    toolBar_->AddButton("new", tr("New"), [this] { tabs_->New(); });
    toolBar_->AddButton("open", tr("Open"), [this] { OpenByDialog(); });
    documentActions_.push_back(
        toolBar_->AddButton("save", tr("Save"), [this] { tabs_->SaveFront(); }));
    toolBar_->addSeparator();
}

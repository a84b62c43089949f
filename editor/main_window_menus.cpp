// The editor's menus: what stands in them, and what belongs to no other part of the window.

#include "command_labels.h"
#include "editor_icons.h"
#include "find_bar.h"
#include "main_window.h"
#include "shortcuts_dialog.h"
#include "text_editor.h"

#include <QActionGroup>
#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>

#include <algorithm>
#include <utility>

QAction* MainWindow::Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                         const std::function<void()>& action)
{
    auto* const added = menu->addAction(text);
    added->setShortcut(keys);
    connect(added, &QAction::triggered, this, action);
    return added;
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
    MakeBoardMenu();
    MakeHelpMenu();
}

void MainWindow::MakeFileMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&File"));
    Add(menu, tr("&New"), QKeySequence::New, [this] { tabs_->New(); });
    Add(menu, tr("&Open…"), QKeySequence::Open, [this] { OpenByDialog(); });
    MakeRecentMenu(menu);
    menu->addSeparator();
    Add(menu, tr("&Save"), QKeySequence::Save, [this] { tabs_->SaveFront(); });
    Add(menu, tr("Save &As…"), QKeySequence("Ctrl+Shift+S"), [this] { tabs_->SaveFrontAs(); });
    Add(menu, tr("Save A&ll"), QKeySequence("Ctrl+Alt+S"), [this] { tabs_->SaveAll(); });
    menu->addSeparator();
    Add(menu, tr("&Close"), QKeySequence("Ctrl+W"),
        [this] { tabs_->Close(tabs_->currentIndex()); });
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
    // The fields of the find bar have slots of the same names as the texts.
    const auto add = [&](const QString& text, const char* keys, const char* slot) {
        Add(menu, text, QKeySequence(keys), [this, slot] {
            auto* const target = IsFindBarFocused() ? QApplication::focusWidget() : FocusedText();
            if (target != nullptr &&
                target->metaObject()->indexOfSlot(QByteArray(slot).append("()").constData()) >= 0) {
                QMetaObject::invokeMethod(target, slot);
            }
        });
    };
    add(tr("&Undo"), "Ctrl+Z", "undo");
    add(tr("&Redo"), "Ctrl+Shift+Z", "redo");
    menu->addSeparator();
    add(tr("Cu&t"), "Ctrl+X", "cut");
    add(tr("&Copy"), "Ctrl+C", "copy");
    add(tr("&Paste"), "Ctrl+V", "paste");
    add(tr("Select &All"), "Ctrl+A", "selectAll");
    menu->addSeparator();
    Add(menu, tr("Comment or Unco&mment"), QKeySequence("Ctrl+/"), [this] {
        if (auto* const page = tabs_->FrontPage()) {
            page->editor().ToggleComment();
        }
    });
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
    Add(menu, tr("&Go to Line…"), QKeySequence("Ctrl+G"), [this] { GoToLine(); });
}

// In the text that the user works in, also from within the find bar.
void MainWindow::Search(const std::function<void()>& search)
{
    if (!IsFindBarFocused()) {
        findBar_->SetEditor(FocusedText());
    }
    search();
}

void MainWindow::GoToLine()
{
    auto* const page = tabs_->FrontPage();
    if (page == nullptr) {
        return;
    }
    auto& editor = page->editor();
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
    Add(menu, tr("To the &Worksheet and Back"), QKeySequence("Ctrl+J"),
        [this] { SwitchToWorksheetAndBack(); });
    Add(menu, tr("&Next Document"), QKeySequence("Ctrl+PgDown"), [this] {
        tabs_->setCurrentIndex(std::min(tabs_->currentIndex() + 1, tabs_->count() - 1));
    });
    Add(menu, tr("&Previous Document"), QKeySequence("Ctrl+PgUp"),
        [this] { tabs_->setCurrentIndex(std::max(tabs_->currentIndex() - 1, 0)); });
    Add(menu, tr("To the &Message"), QKeySequence("Ctrl+M"), [this] { GoToMessage(); });
    menu->addSeparator();
    MakeAppearanceMenu(menu);
}

void MainWindow::MakeAppearanceMenu(QMenu* parent)
{
    auto* const menu = parent->addMenu(tr("&Appearance"));
    appearances_ = new QActionGroup(menu);
    for (const auto& [text, appearance] :
         {std::pair(tr("As the &Desktop"), Appearance::System),
          std::pair(tr("&Light"), Appearance::Light), std::pair(tr("D&ark"), Appearance::Dark)}) {
        auto* const action =
            Add(menu, text, {}, [this, wanted = appearance] { SetEditorAppearance(wanted); });
        action->setCheckable(true);
        appearances_->addAction(action);
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

void MainWindow::OpenByDialog()
{
    const auto* const front = tabs_->Front();
    const QString folder = front != nullptr && !front->path().empty()
                               ? QFileInfo(QString::fromStdString(front->path())).path()
                               : session_.folder;
    const QStringList files = QFileDialog::getOpenFileNames(
        this, tr("Open"), folder, tr("Python (*.py *.pyw);;All files (*)"));
    if (!files.isEmpty()) {
        OpenFiles(files);
    }
}

void MainWindow::MakeCommandsMenu()
{
    commandsMenu_ = menuBar()->addMenu(tr("&Commands"));
    commandsEnd_ = commandsMenu_->addSeparator();
    Add(commandsMenu_, tr("&Menu of All Commands"), QKeySequence("Alt+Return"),
        [this] { OpenPopUpFromMenu(); });
    Add(commandsMenu_, tr("&Device Window"), QKeySequence("F8"), [this] { OpenDeviceWindow(); });
    commandsMenu_->addSeparator();
    auto* const saves = Add(commandsMenu_, tr("Save &before Commands"), {}, [] {});
    saves->setCheckable(true);
    connect(saves, &QAction::toggled, this,
            [this](bool checked) { session_.savesBeforeCommands = checked; });
    connect(commandsMenu_, &QMenu::aboutToShow, saves,
            [this, saves] { saves->setChecked(session_.savesBeforeCommands); });
    Add(commandsMenu_, tr("S&hortcuts…"), {}, [this] { ChangeShortcuts(); });
}

void MainWindow::AddPluginCommands()
{
    for (const auto& command : host_.commands()) {
        auto* const action = new QAction(CommandLabel(command), commandsMenu_);
        action->setStatusTip(QString::fromStdString(command.description));
        action->setToolTip(action->statusTip());
        connect(action, &QAction::triggered, this, [this, name = command.name] { Perform(name); });
        commandsMenu_->insertAction(commandsEnd_, action);
        commandActions_[command.name] = action;
    }
    ShowShortcuts();
}

void MainWindow::ShowShortcuts()
{
    for (const auto& [name, action] : commandActions_) {
        action->setShortcut(shortcuts_.Shortcut(name));
    }
}

void MainWindow::ChangeShortcuts()
{
    if (ShortcutsDialog(shortcuts_, host_.commands(), this).exec() == QDialog::Accepted) {
        ShowShortcuts();
    }
}

// The editor's own, which no command of the plug-in may take.
std::vector<NamedShortcut> MainWindow::OwnShortcuts() const
{
    std::vector<NamedShortcut> own{{"Run Line or Selection", "Ctrl+Return"}};
    for (const auto* action : menuBar()->actions()) {
        own.push_back({tr("the menu %1").arg(action->text().remove('&')).toStdString(),
                       QKeySequence::mnemonic(action->text()).toString()});
    }
    for (const auto* menu : menuBar()->findChildren<QMenu*>()) {
        for (const auto* action : menu->actions()) {
            for (const auto& keys : action->shortcuts()) {
                own.push_back({action->text().remove('&').toStdString(),
                               keys.toString(QKeySequence::PortableText)});
            }
        }
    }
    return own;
}

void MainWindow::MakeProjectMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Project"));
    Add(menu, tr("&Open Folder…"), QKeySequence("Ctrl+Shift+O"), [this] { OpenFolderByDialog(); });
    Add(menu, tr("&Close Folder"), {}, [this] { SetFolder({}); });
    menu->addSeparator();
    Add(menu, tr("Make This Document the &Target"), QKeySequence("Ctrl+T"), [this] {
        if (const auto* const front = tabs_->Front(); front != nullptr && !front->path().empty()) {
            SetTarget(QString::fromStdString(front->path()));
        } else {
            Tell(tr("The document has no file yet; save it first."));
        }
    });
    Add(menu, tr("&No Target of Its Own"), QKeySequence("Ctrl+Shift+T"), [this] { SetTarget({}); });
}

void MainWindow::OpenFolderByDialog()
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("Open Folder"), session_.folder);
    if (!folder.isEmpty()) {
        SetFolder(folder);
    }
}

void MainWindow::MakeWorksheetMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Worksheet"));
    // Its keys are the worksheet's own: in a document they mean something else.
    Add(menu, tr("&Run Line or Selection\tCtrl+Return"), {}, [this] { worksheet_->RequestRun(); });
    Add(menu, tr("&Stop What the Line Runs"), QKeySequence("Ctrl+Shift+C"),
        [this] { shell_->Stop(); });
    menu->addSeparator();
    Add(menu, tr("&Next Place in a Traceback"), QKeySequence("F4"),
        [this] { worksheet_->GoToNextLink(); });
    Add(menu, tr("&Previous Place in a Traceback"), QKeySequence("Shift+F4"),
        [this] { worksheet_->GoToPreviousLink(); });
    menu->addSeparator();
    Add(menu, tr("&Clear"), QKeySequence("Ctrl+Shift+K"), [this] { worksheet_->MakeEmpty(); });
}

void MainWindow::MakeBoardMenu()
{
    boardMenu_ = menuBar()->addMenu(tr("&Board"));
    auto* const attach =
        Add(boardMenu_, tr("&Attach Virtual Board"), {}, [this] { AttachVirtualBoard(); });
    auto* const unplug =
        Add(boardMenu_, tr("&Unplug Virtual Board"), {}, [this] { board_->UnplugVirtualBoard(); });
    connect(boardMenu_, &QMenu::aboutToShow, this, [this, attach, unplug] {
        const bool isVirtual = board_->board().kind == BoardMonitor::Kind::Virtual;
        attach->setEnabled(!isVirtual);
        unplug->setEnabled(isVirtual);
    });
    Add(boardMenu_, tr("Show the Virtual Board's &Folder"), {}, [this] {
        const QString folder = QString::fromStdString(board_->boardFolder());
        if (!QFileInfo(folder).isDir() || !QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
            Tell(tr("The virtual board's files are in %1.").arg(folder));
        }
    });
    boardMenu_->addSeparator();
    Add(boardMenu_, tr("&Device Window"), {}, [this] { OpenDeviceWindow(); });
    boardButton_->setMenu(boardMenu_);
}

void MainWindow::MakeHelpMenu()
{
    auto* const menu = menuBar()->addMenu(tr("&Help"));
    Add(menu, tr("&Plug-in Help"), QKeySequence("F1"), [this] { ShowPluginHelp(); });
    Add(menu, tr("&About Quilp"), {}, [this] { ShowAbout(); });
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
    toolBar_ = addToolBar(tr("Tools"));
    toolBar_->setObjectName("tools");
    toolBar_->setMovable(false);
    toolBar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar_->setIconSize(QSize(16, 16));
    toolBar_->setContextMenuPolicy(Qt::PreventContextMenu);
    const auto add = [this](const QString& icon, const QString& text, const auto& action) {
        auto* const added = toolBar_->addAction(EditorIcon(icon), text);
        connect(added, &QAction::triggered, this, action);
    };
    add("new", tr("New"), [this] { tabs_->New(); });
    add("open", tr("Open"), [this] { OpenByDialog(); });
    add("save", tr("Save"), [this] { tabs_->SaveFront(); });
    toolBar_->addSeparator();
    controlsEnd_ = toolBar_->addSeparator();
    controlsEnd_->setVisible(false);
}

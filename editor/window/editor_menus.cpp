#include "editor_menus.h"

#include "appearance.h"
#include "board_documents.h"
#include "board_menu.h"
#include "board_panel.h"
#include "board_prompt.h"
#include "commands_menu.h"
#include "document_tabs.h"
#include "editor_style.h"
#include "file_actions.h"
#include "find_bar.h"
#include "front_saver.h"
#include "help_window.h"
#include "input_field.h"
#include "message_area.h"
#include "plugin_actions.h"
#include "project.h"
#include "scintilla_text.h"
#include "text_actions.h"
#include "text_editor.h"
#include "worksheet.h"
#include "worksheet_actions.h"

#include <QActionGroup>
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>

#include <utility>

namespace {

constexpr int kWorksheetStep = 40;  // pixels

QString PlainText(const QAction& action)
{
    return action.text().remove('&');
}

}  // namespace

EditorMenus::EditorMenus(const EditorParts& parts, Shortcuts& shortcuts)
    : QObject(&parts.window),
      parts_(parts),
      commandsMenu_(new CommandsMenu(shortcuts, &parts.window))
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

QMenu* EditorMenus::AddMenu(const QString& title)
{
    return parts_.window.menuBar()->addMenu(title);
}

QAction* EditorMenus::Add(QMenu* menu, const QString& text, const QKeySequence& keys,
                          const std::function<void()>& action)
{
    auto* const added = menu->addAction(text);
    added->setShortcut(keys);
    connect(added, &QAction::triggered, this, action);
    return added;
}

void EditorMenus::AddForDocument(QMenu* menu, const QString& text, const QKeySequence& keys,
                                 const std::function<void(DocumentPage& page)>& action)
{
    AddDocumentAction(Add(menu, text, keys, [this, action] {
        if (auto* const page = parts_.tabs.FrontPage()) {
            action(*page);
        }
    }));
}

void EditorMenus::EnableDocumentActions(bool enable)
{
    for (auto* const action : documentActions_) {
        action->setEnabled(enable);
    }
}

void EditorMenus::MakeFileMenu()
{
    auto* const menu = AddMenu(tr("&File"));
    Add(menu, tr("&New"), QKeySequence::New, [this] { parts_.tabs.New(); });
    Add(menu, tr("&Open…"), QKeySequence::Open, [this] { parts_.files.OpenByDialog(); });
    MakeRecentMenu(menu);
    menu->addSeparator();
    AddForDocument(menu, tr("&Save"), QKeySequence::Save,
                   [this](auto&) { parts_.tabs.saver().SaveFront(); });
    AddForDocument(menu, tr("Save &As…"), QKeySequence("Ctrl+Shift+S"),
                   [this](auto&) { parts_.tabs.saver().SaveFrontAs(); });
    AddForDocument(menu, tr("Save A&ll"), QKeySequence("Ctrl+Alt+S"),
                   [this](auto&) { parts_.tabs.saver().SaveAll(); });
    menu->addSeparator();
    AddForDocument(menu, tr("&Close"), QKeySequence("Ctrl+W"),
                   [this](auto&) { parts_.tabs.Close(parts_.tabs.currentIndex()); });
    Add(menu, tr("&Quit"), QKeySequence("Ctrl+Q"), [this] { parts_.window.close(); });
}

void EditorMenus::MakeRecentMenu(QMenu* parent)
{
    auto* const menu = parent->addMenu(tr("Open &Recent"));
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        menu->clear();
        for (const auto& path : parts_.files.recent()) {
            Add(menu, QString(path).replace('&', "&&"), {},
                [this, path] { parts_.files.Open({path}); });
        }
    });
}

void EditorMenus::MakeEditMenu()
{
    auto* const menu = AddMenu(tr("&Edit"));
    const auto add = [&](const QString& text, const QKeySequence& keys, const char* slot) {
        Add(menu, text, keys, [this, slot] { parts_.texts.Edit(slot); });
    };
    add(tr("&Undo"), QKeySequence("Ctrl+Z"), "undo");
    add(tr("&Redo"), kRedoKeys, "redo");
    menu->addSeparator();
    add(tr("Cu&t"), QKeySequence("Ctrl+X"), "cut");
    add(tr("&Copy"), QKeySequence("Ctrl+C"), "copy");
    add(tr("&Paste"), QKeySequence("Ctrl+V"), "paste");
    add(tr("Select &All"), QKeySequence("Ctrl+A"), "selectAll");
    menu->addSeparator();
    AddForDocument(menu, tr("Toggle Co&mment"), QKeySequence("Ctrl+/"),
                   [](DocumentPage& page) { page.editor().ToggleComment(); });
}

void EditorMenus::MakeSearchMenu()
{
    auto* const menu = AddMenu(tr("&Search"));
    const auto add = [&](const QString& text, const char* keys, void (FindBar::*search)()) {
        Add(menu, text, QKeySequence(keys), [this, search] { parts_.texts.Search(search); });
    };
    add(tr("&Find…"), "Ctrl+F", &FindBar::OpenForFind);
    add(tr("&Replace…"), "Ctrl+H", &FindBar::OpenForReplace);
    add(tr("Find &Next"), "F3", &FindBar::FindNext);
    add(tr("Find &Previous"), "Shift+F3", &FindBar::FindPrevious);
    menu->addSeparator();
    AddForDocument(menu, tr("&Go to Line…"), QKeySequence("Ctrl+G"),
                   [this](DocumentPage& page) { parts_.texts.GoToLine(page); });
}

void EditorMenus::MakeViewMenu()
{
    auto* const menu = AddMenu(tr("&View"));
    auto& texts = parts_.texts;
    Add(menu, tr("Zoom &In"), {}, [&texts] {
        texts.ZoomTo(texts.zoom() + 1);
    })->setShortcuts({QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")});
    Add(menu, tr("Zoom &Out"), QKeySequence("Ctrl+-"),
        [&texts] { texts.ZoomTo(texts.zoom() - 1); });
    Add(menu, tr("&Reset Zoom"), QKeySequence("Ctrl+0"), [&texts] { texts.ZoomTo(0); });
    menu->addSeparator();
    AddTabActions(menu);
    menu->addSeparator();
    Add(menu, tr("&Switch to Worksheet"), QKeySequence("Ctrl+J"),
        [&texts] { texts.SwitchToWorksheet(); });
    Add(menu, tr("Go to P&rompt"), QKeySequence("Ctrl+Shift+J"),
        [this] { parts_.input.setFocus(); });
    Add(menu, tr("&Enlarge Worksheet"), QKeySequence("Ctrl+Shift+Up"),
        [&texts] { texts.EnlargeWorksheet(kWorksheetStep); });
    Add(menu, tr("S&hrink Worksheet"), QKeySequence("Ctrl+Shift+Down"),
        [&texts] { texts.EnlargeWorksheet(-kWorksheetStep); });
    Add(menu, tr("Go to &Message"), QKeySequence("Ctrl+M"),
        [this] { parts_.messages.FocusMessage(); });
    menu->addSeparator();
    MakeAppearanceMenu(menu);
}

void EditorMenus::AddTabActions(QMenu* menu)
{
    auto& tabs = parts_.tabs;
    Add(menu, tr("&Next Document"), QKeySequence("Ctrl+PgDown"),
        [&tabs] { tabs.setCurrentIndex(std::min(tabs.currentIndex() + 1, tabs.count() - 1)); });
    Add(menu, tr("&Previous Document"), QKeySequence("Ctrl+PgUp"),
        [&tabs] { tabs.setCurrentIndex(std::max(tabs.currentIndex() - 1, 0)); });
}

void EditorMenus::MakeAppearanceMenu(QMenu* parent)
{
    auto* const menu = parent->addMenu(tr("&Appearance"));
    auto* const choices = new QActionGroup(menu);
    choices->setExclusive(true);  // Its items have radio marks.
    for (const auto& [text, wanted] :
         {std::pair(tr("&Follow System"), Appearance::System),
          std::pair(tr("&Light"), Appearance::Light), std::pair(tr("&Dark"), Appearance::Dark)}) {
        const auto appearance = wanted;
        auto* const action = Add(menu, text, {}, [appearance] { SetAppearance(appearance); });
        action->setCheckable(true);
        choices->addAction(action);
        connect(menu, &QMenu::aboutToShow, action,
                [action, appearance] { action->setChecked(CurrentAppearance() == appearance); });
    }
}

void EditorMenus::MakeCommandsMenu()
{
    auto* const menu = commandsMenu_;
    parts_.window.menuBar()->addMenu(menu);
    Add(menu, tr("S&tatus"), {}, [this] { parts_.commands.ShowStatus(); });
    AddForDocument(
        menu, tr("Run Se&lection on Board"), QKeySequence("Ctrl+Return"),
        [this](DocumentPage& page) { parts_.prompt.RunLines(CodeAtCaret(page.editor())); });
    menu->addSeparator();
    Add(menu, tr("Show Command &Menu"), QKeySequence("Alt+Return"),
        [this] { Q_EMIT CommandMenuRequested(); });
    Add(menu, tr("&Device Window"), QKeySequence("F8"),
        [this] { parts_.commands.OpenDeviceWindow(); });
    menu->addSeparator();
    auto* const saves = Add(menu, tr("Save &before Commands"), {}, [] {});
    saves->setCheckable(true);
    connect(saves, &QAction::toggled, this,
            [this](bool checked) { parts_.frontSaver.SetSavesFirst(checked); });
    connect(menu, &QMenu::aboutToShow, saves,
            [this, saves] { saves->setChecked(parts_.frontSaver.savesFirst()); });
    Add(menu, tr("S&hortcuts…"), {}, [menu] { menu->ChangeShortcuts(); });
}

std::vector<NamedShortcut> EditorMenus::ReservedShortcuts() const
{
    std::vector<NamedShortcut> reserved{{"Run Line or Selection", "Ctrl+Return"}};
    for (const auto* action : parts_.window.menuBar()->actions()) {
        reserved.push_back({tr("%1 menu").arg(PlainText(*action)).toStdString(),
                            QKeySequence::mnemonic(action->text()).toString()});
    }
    for (const auto* menu : parts_.window.findChildren<QMenu*>()) {
        for (const auto* action : menu->actions()) {
            for (const auto& keys : action->shortcuts()) {
                reserved.push_back(
                    {PlainText(*action).toStdString(), keys.toString(QKeySequence::PortableText)});
            }
        }
    }
    for (const auto* command : parts_.worksheet.standardCommands()->commands()) {
        for (const int keys : {command->key(), command->alternateKey()}) {
            reserved.push_back(
                {command->description().toStdString(), QKeySequence(keys).toString()});
        }
    }
    return reserved;
}

void EditorMenus::MakeProjectMenu()
{
    auto* const menu = AddMenu(tr("&Project"));
    Add(menu, tr("&Open Folder…"), QKeySequence("Ctrl+K,Ctrl+O"),
        [this] { parts_.files.OpenFolderByDialog(); });
    Add(menu, tr("&Close Folder"), {}, [this] { parts_.project.SetFolder({}); });
    auto* const withFiles = Add(menu, tr("&Run with Project Files"), {}, [] {});
    withFiles->setCheckable(true);
    connect(withFiles, &QAction::triggered, &parts_.project, &Project::SetRunsWithFiles);
    connect(menu, &QMenu::aboutToShow, withFiles, [this, withFiles] {
        withFiles->setEnabled(!parts_.project.folder().isEmpty());
        withFiles->setChecked(parts_.project.runsWithFiles());
    });
    menu->addSeparator();
    AddForDocument(menu, tr("Make This Document the &Target"), QKeySequence("Ctrl+T"),
                   [this](DocumentPage& page) { parts_.files.MakeTarget(page.document()); });
    Add(menu, tr("C&lear Target"), QKeySequence("Ctrl+Shift+T"),
        [this] { parts_.project.SetTarget({}); });
}

void EditorMenus::MakeWorksheetMenu()
{
    auto* const menu = AddMenu(tr("&Worksheet"));
    auto& actions = parts_.worksheetActions;
    // The worksheet itself handles the keys, because documents use them differently.
    Add(menu, tr("&Run Line or Selection\tCtrl+Return"), {},
        [this] { parts_.worksheet.RequestRun(); });
    Add(menu, tr("&Stop Shell Command"), QKeySequence("Ctrl+Shift+C"),
        [&actions] { actions.StopShell(); });
    menu->addSeparator();
    Add(menu, tr("&Next Traceback Line"), QKeySequence("F4"),
        [&actions] { actions.GoToNextLink(); });
    Add(menu, tr("&Previous Traceback Line"), QKeySequence("Shift+F4"),
        [&actions] { actions.GoToPreviousLink(); });
    menu->addSeparator();
    auto* const wraps = Add(menu, tr("&Wrap Lines"), {}, [] {});
    wraps->setCheckable(true);
    connect(wraps, &QAction::toggled, &parts_.worksheet, &Worksheet::SetWraps);
    connect(menu, &QMenu::aboutToShow, wraps,
            [this, wraps] { wraps->setChecked(parts_.worksheet.wraps()); });
    Add(menu, tr("&Clear"), QKeySequence("Ctrl+Shift+K"), [this] { parts_.worksheet.ClearAll(); });
}

void EditorMenus::MakeBoardMenu()
{
    boardMenu_ = new BoardMenu(parts_.boardActions, parts_.board, &parts_.window);
    parts_.window.menuBar()->addMenu(boardMenu_);
    boardMenu_->AddOpenFile([this](const std::string& path) { parts_.boardDocuments.Open(path); })
        ->setShortcut(QKeySequence("Ctrl+Shift+O"));
    boardMenu_->addSeparator();
    auto* const shows = Add(boardMenu_, tr("&Show Board"), QKeySequence("F9"), [] {});
    shows->setCheckable(true);
    auto& panel = parts_.boardPanel;
    connect(shows, &QAction::triggered, &panel, [this, &panel] {
        if (panel.isAncestorOf(QApplication::focusWidget())) {
            parts_.texts.GoToDocument();
        }
        panel.setVisible(panel.isHidden());
    });
    connect(boardMenu_, &BoardMenu::aboutToShow, shows,
            [&panel, shows] { shows->setChecked(!panel.isHidden()); });
    connect(boardMenu_, &BoardMenu::DeviceWindowRequested, &parts_.commands,
            &PluginActions::OpenDeviceWindow);
}

void EditorMenus::MakeHelpMenu()
{
    auto* const menu = AddMenu(tr("&Help"));
    Add(menu, tr("&Quilp Help"), QKeySequence("F1"), [this] { Q_EMIT HelpRequested(); });
    Add(menu, tr("&About Quilp"), {}, [this] { ShowAbout(&parts_.window); });
}

#include "kate_host.h"

#include "kate_window.h"
#include "link_target.h"
#include "path_text.h"
#include "python_file.h"
#include "shortcut_code.h"
#include "user_folders.h"
#include "window_widget.h"

#include <KAcceleratorManager>
#include <KTextEditor/Application>
#include <KTextEditor/Document>
#include <KTextEditor/Editor>
#include <KTextEditor/MainWindow>
#include <KTextEditor/View>

#include <QApplication>
#include <QEvent>
#include <QFileInfo>

#include <utility>

namespace {

// Empty for a document that is not a file of this computer.
std::string PathOf(const KTextEditor::Document& document)
{
    const QUrl url = document.url();
    return url.isLocalFile() ? TextToPath(url.toLocalFile()) : std::string();
}

bool IsPython(const KTextEditor::Document& document)
{
    return document.highlightingMode() == QLatin1String("Python") || IsPythonFile(PathOf(document));
}

}  // namespace

KateHost::KateHost(PluginModule module, const Installation& installation)
    : module_(std::move(module)),
      messages_([this] { return FrontWindow(); }, output_),
      host_(module_, runtime_, [this](const std::string& text) { output_.Append(text); }),
      tool_(runtime_, ResourceFolder(module_.bundle()) + "/mpremote/mpremote.py",
            [this](const std::string& text) { output_.Append(text); }),
      monitor_(runtime_, nullptr),
      board_(
          installation.boardProgram, UserFolders::OfUser().boardFolder(),
          [] { return FindBoardPorts(); }, nullptr),
      commands_(
          host_, messages_, [this] { return SaveFront(); }, nullptr),
      boardActions_(BoardParts(), nullptr),
      questions_(boardActions_, monitor_, BoardParts(), nullptr),
      target_(settings_.group().readEntry("Target", QString()))
{
    pins_.Follow(board_);
    ConnectRuntime();
    connect(&commands_, &PluginActions::OutputExpected, this, &KateHost::ShowOutput);
    connect(&monitor_, &CommandMonitor::Started, this, [this] {
        if (monitor_.command().kind == BoardCommand::Kind::Run) {
            ShowOutput();  // However the program was started.
        }
    });
    qApp->installEventFilter(this);
}

// Kate adds mnemonics to the buttons of all windows, but names of ports and files have none. The
// plug-in's windows are known before they are shown.
bool KateHost::eventFilter(QObject* watched, QEvent* event)
{
    auto* const window =
        event->type() == QEvent::Polish ? dynamic_cast<WindowWidget*>(watched) : nullptr;
    if (window != nullptr) {
        KAcceleratorManager::setNoAccel(window);
    }
    return QObject::eventFilter(watched, event);
}

KateHost::~KateHost()
{
    SaveBoard();
    runtime_.handlers.windowClosed = {};  // The settings are saved here.
    runtime_.CloseWindows();
    SaveSettings();
    runtime_.ShutDown();
}

BoardActions::Parts KateHost::BoardParts()
{
    return {.window = [this]() -> QWidget* {
                auto* const window = FrontWindow();
                return window != nullptr ? window->window() : nullptr;
            },
            .tool = tool_,
            .board = board_,
            .output = output_,
            .messages = messages_};
}

void KateHost::ConnectRuntime()
{
    runtime_.handlers.idle = [this] { output_.EndOutput(); };
    runtime_.handlers.windowClosed = [this] { SaveSettings(); };
    runtime_.handlers.warning = [this](const std::string& text) {
        messages_.Report(QString::fromStdString(text));
    };
    runtime_.handlers.error = [this](const std::string& error) {
        messages_.Report(tr("The plug-in failed: %1").arg(QString::fromStdString(error)));
    };
}

void KateHost::ShowOutput()
{
    if (front_ != nullptr) {
        front_->ShowOutput();
    }
}

std::expected<void, std::string> KateHost::Start()
{
    host_.SetSettings(&settings_);
    host_.SetShortcuts([this](const std::string& command) {
        return ShortcutCode(front_ != nullptr ? front_->Shortcut(command) : QKeySequence());
    });
    const auto started = host_.Start();
    if (started) {
        RestoreBoard();
    }
    return started;
}

void KateHost::RestoreBoard()
{
    const auto& group = settings_.group();
    if (const QStringList port = group.readEntry("Board", QStringList()); port.size() == 3) {
        board_.RestoreChoice({port[0].toStdString(), port[1].toStdString(), port[2].toStdString()});
    }
    if (group.readEntry("VirtualBoard", false)) {
        boardActions_.RestoreVirtualBoard();
    }
}

void KateHost::SaveBoard()
{
    auto& group = settings_.group();
    QStringList port;
    if (const auto& choice = board_.userChoice()) {
        for (const auto& part : {choice->node, choice->name, choice->id}) {
            port.append(QString::fromStdString(part));
        }
    }
    group.writeEntry("Board", port);
    group.writeEntry("VirtualBoard", boardActions_.usesVirtualBoard());
    group.writeEntry("Target", target_);
}

void KateHost::SaveSettings()
{
    if (const auto saved = host_.SaveSettings(); !saved) {
        messages_.Report(QString::fromStdString(saved.error()));
    }
}

void KateHost::Use(KateWindow& window)
{
    front_ = &window;
    host_.SetWindow(window.mainWindow().window());
    ShowDocument();
}

void KateHost::Remove(const KateWindow& window)
{
    if (front_ == &window) {
        front_ = nullptr;
        host_.SetWindow(nullptr);
    }
}

KTextEditor::MainWindow* KateHost::FrontWindow() const
{
    return front_ != nullptr ? &front_->mainWindow()
                             : KTextEditor::Editor::instance()->application()->activeMainWindow();
}

KTextEditor::Document* KateHost::FrontDocument() const
{
    auto* const window = FrontWindow();
    auto* const view = window != nullptr ? window->activeView() : nullptr;
    return view != nullptr ? view->document() : nullptr;
}

void KateHost::ShowDocument()
{
    const auto* const document = FrontDocument();
    host_.SetDocument(document != nullptr ? PathOf(*document) : std::string(),
                      document != nullptr && IsPython(*document));
    host_.SetTarget(TextToPath(target_));
    const QString main = ProjectFolder() + "/main.py";
    host_.SetProjectTarget(QFileInfo(main).isFile() ? TextToPath(main) : std::string());
}

// The folder of the project that the project plug-in has opened.
QString KateHost::ProjectFolder() const
{
    auto* const window = FrontWindow();
    auto* const project =
        window != nullptr ? window->pluginView(QStringLiteral("kateprojectplugin")) : nullptr;
    return project != nullptr ? project->property("projectBaseDir").toString() : QString();
}

bool KateHost::Save(KTextEditor::Document& document)
{
    const bool isRemote = !document.url().isEmpty() && !document.url().isLocalFile();
    if (isRemote && IsPython(document)) {
        messages_.Report(tr("%1 is not a file of this computer.").arg(document.documentName()));
        return false;
    }
    const bool isUnnamedPython = document.url().isEmpty() && IsPython(document);
    const bool isChangedFile = document.isModified() && document.url().isLocalFile();
    return !(isUnnamedPython || isChangedFile) || document.documentSave();
}

bool KateHost::SaveFront()
{
    auto* const front = FrontDocument();
    if (front != nullptr && !Save(*front)) {
        return false;
    }
    ShowDocument();  // It may have another name now.
    if (!host_.HasRunnable()) {
        return true;
    }
    const auto file = QUrl::fromLocalFile(PathToText(host_.Runnable().path()));
    auto* const runnable = KTextEditor::Editor::instance()->application()->findUrl(file);
    return runnable == nullptr || Save(*runnable);
}

void KateHost::ToggleTarget()
{
    const auto* const document = FrontDocument();
    const QString file = document != nullptr ? PathToText(PathOf(*document)) : QString();
    if (file.isEmpty()) {
        return messages_.Report(tr("Save the document first: a target is a file."));
    }
    target_ = target_ == file ? QString() : file;
    ShowDocument();
    output_.AppendLines(
        (target_.isEmpty() ? tr("No target.\n") : tr("Target: %1\n").arg(target_)).toStdString());
}

void KateHost::FollowLink(const QString& path, int line)
{
    auto* const window = FrontWindow();
    const auto* const document = FrontDocument();
    const QString folder =
        document != nullptr ? QFileInfo(document->url().toLocalFile()).path() : QString();
    const auto file = FindLinkedFile(
        TextToPath(path), {TextToPath(folder), TextToPath(ProjectFolder()), board_.boardFolder()});
    if (file.empty() || window == nullptr) {
        return messages_.Report(tr("The file %1 does not exist on this computer.").arg(path));
    }
    if (auto* const view = window->openUrl(QUrl::fromLocalFile(PathToText(file)))) {
        view->setCursorPosition({line - 1, 0});
        view->setFocus();
    }
}

void KateHost::ShowHelp()
{
    Runtime::Protect([&] { output_.AppendLines(module_.Help()); });
    output_.FollowEnd();
}

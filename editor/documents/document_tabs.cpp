#include "document_tabs.h"

#include "action_icons.h"
#include "path_text.h"
#include "tab_bar.h"
#include "text_editor.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QPointer>
#include <QToolButton>
#include <QUrl>

#include <chrono>

namespace {

constexpr int kMaxCheckThreads = 4;
constexpr std::chrono::seconds kCheckPatience{1};

}  // namespace

DocumentTabs::DocumentTabs(const std::string& recoveryRoot, QWidget* parent)
    : QTabWidget(parent),
      saver_(*this),
      copies_(recoveryRoot, *this),
      checks_(kMaxCheckThreads, kCheckPatience)
{
    AddTabMenu();
    setDocumentMode(true);
    setMovable(true);
    setAccessibleName(tr("Documents"));
    connect(&saver_, &DocumentSaver::Saved, this, [this](DocumentPage& page) {
        // It may have changed while it was written.
        page.document().IsModified() ? copies_.TextChanged(page) : copies_.Discard(page);
        ShowState(page);
        Q_EMIT Opened(PathToText(page.document().path()));
    });
    connect(this, &QTabWidget::currentChanged, this, [this] {
        if (auto* const page = FrontPage()) {
            page->editor().setFocus();
        }
        Q_EMIT FrontChanged();
    });
}

DocumentTabs::~DocumentTabs()
{
    // The editors emit signals while they are destroyed.
    blockSignals(true);
    while (count() > 0) {
        delete widget(0);
    }
}

DocumentPage* DocumentTabs::PageAt(int index) const
{
    return static_cast<DocumentPage*>(widget(index));  // All pages are of this type.
}

Document* DocumentTabs::Front() const
{
    auto* const page = FrontPage();
    return page != nullptr ? &page->document() : nullptr;
}

QStringList DocumentTabs::Paths() const
{
    QStringList paths;
    for (int i = 0; i < count(); ++i) {
        if (const auto& path = PageAt(i)->document().path(); !path.empty()) {
            paths.append(PathToText(path));
        }
    }
    return paths;
}

int DocumentTabs::IndexOf(const QString& path) const
{
    const std::string wanted = FileIdentity(TextToPath(path));
    for (int i = 0; i < count(); ++i) {
        const auto& identity = PageAt(i)->document().identity();
        if (!identity.empty() && identity == wanted) {
            return i;
        }
    }
    return -1;
}

// Without a space, because paths with spaces cannot be passed to the tool.
QString DocumentTabs::UnusedName() const
{
    const auto isTaken = [this](const QString& name) {
        for (int i = 0; i < count(); ++i) {
            const QString other = PageAt(i)->document().Name();
            if (other == name || other == name + ".py") {
                return true;
            }
        }
        return false;
    };
    int number = 1;
    while (isTaken(tr("untitled_%1").arg(number))) {
        ++number;
    }
    return tr("untitled_%1").arg(number);
}

DocumentPage& DocumentTabs::AddPage()
{
    const QString name = UnusedName();
    auto* const page = new DocumentPage(name, std::to_string(++lastRecoveryId_));
    connect(&page->editor(), &TextEditor::Changing, page,
            [this, page] { copies_.TextChanged(*page); });
    connect(&page->editor(), &QsciScintilla::modificationChanged, page,
            [this, page] { ShowState(*page); });
    connect(&page->editor(), &TextEditor::FilesDropped, this, &DocumentTabs::FilesDropped);
    const int index = addTab(page, name);
    auto* const close = new QToolButton(tabBar());
    close->setIcon(ActionIcon(Action::Close));
    close->setIconSize(QSize(12, 12));
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::NoFocus);  // Keyboard users press Ctrl+W.
    tabBar()->setTabButton(index, QTabBar::RightSide, close);
    connect(close, &QToolButton::clicked, page, [this, page] { Close(indexOf(page)); });
    return *page;
}

void DocumentTabs::RemovePage(int index)
{
    auto* const page = PageAt(index);
    copies_.Discard(*page);
    removeTab(index);
    page->deleteLater();  // It may be handling the event that closes it.
}

// The asterisk in a tab's title marks unsaved changes.
void DocumentTabs::ShowState(DocumentPage& page)
{
    const auto& document = page.document();
    const int index = indexOf(&page);
    const QString mark = document.IsSaving()     ? tr(" – saving…")
                         : document.IsModified() ? QString(" *")
                                                 : QString();
    const QString title = TitleOf(document) + mark;
    setTabText(index, QString(title).replace('&', "&&"));
    setTabToolTip(index, PlaceOf(document));
    page.editor().setAccessibleName(title);
    tabBar()->tabButton(index, QTabBar::RightSide)->setAccessibleName(tr("Close %1").arg(title));
    if (index == currentIndex()) {
        Q_EMIT FrontChanged();
    }
}

void DocumentTabs::New()
{
    auto& page = AddPage();
    setCurrentWidget(&page);
    ShowState(page);
}

bool DocumentTabs::Open(const QString& path, LongLines longLines)
{
    if (const int open = IndexOf(path); open >= 0) {
        setCurrentIndex(open);
        return true;
    }
    const QString full = QFileInfo(path).absoluteFilePath();
    const auto file = Document::Read(TextToPath(full));
    if (!file) {
        Q_EMIT Failed(QString::fromStdString(file.error()));
        return false;
    }
    const auto slow = FirstTooLongLine(file->content.text);
    if (slow && longLines == LongLines::Refuse) {
        Q_EMIT LineTooLong(full, *slow);
        return false;
    }
    auto* const front = FrontPage();
    auto& page = front != nullptr && front->document().IsPristine() ? *front : AddPage();
    page.document().Load(*file);
    copies_.Forget(page);  // Loading the file is not a change.
    setCurrentWidget(&page);
    ShowState(page);
    page.editor().setFocus();
    Q_EMIT Opened(full);
    return true;
}

bool DocumentTabs::Close(int index)
{
    auto* const page = PageAt(index);
    if (page == nullptr || !saver_.ConfirmClose(*page)) {
        return false;
    }
    RemovePage(indexOf(page));
    return true;
}

void DocumentTabs::CloseOthers(int index)
{
    auto* const kept = PageAt(index);
    for (int i = count() - 1; i >= 0; --i) {
        if (PageAt(i) != kept && !Close(i)) {
            return;
        }
    }
}

void DocumentTabs::AddTabMenu()
{
    auto* const bar = new TabBar(this);
    setTabBar(bar);
    connect(bar, &TabBar::CloseRequested, this, &DocumentTabs::Close);
    connect(bar, &TabBar::CloseOthersRequested, this, &DocumentTabs::CloseOthers);
    connect(bar, &TabBar::CopyPathRequested, this, &DocumentTabs::CopyPath);
    connect(bar, &TabBar::ShowInFolderRequested, this, &DocumentTabs::ShowInFolder);
}

void DocumentTabs::CopyPath(int index)
{
    QGuiApplication::clipboard()->setText(PathToText(PageAt(index)->document().path()));
}

void DocumentTabs::ShowInFolder(int index)
{
    const QString folder = QFileInfo(PathToText(PageAt(index)->document().path())).path();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) {
        Q_EMIT Failed(tr("The file is in %1.").arg(folder));
    }
}

void DocumentTabs::CloseAll()
{
    const QSignalBlocker quiet(this);
    while (count() > 0) {
        RemovePage(0);
    }
}

void DocumentTabs::CheckDisk()
{
    for (int i = 0; i < count(); ++i) {
        const auto& document = PageAt(i)->document();
        if (!document.path().empty() && !document.IsSaving()) {
            CheckDisk(*PageAt(i));
        }
    }
}

// Only a difference is passed to this thread.
void DocumentTabs::CheckDisk(DocumentPage& page)
{
    const auto& document = page.document();
    checks_.Do(page.recoveryId(),
               [this, path = document.path(), known = document.stamp(),
                checked = QPointer<DocumentPage>(&page)]() -> FileWorker::Result {
                   const auto now = FileStamp::Of(path);
                   if (now == known) {
                       return {};
                   }
                   return [this, checked, path, known, now] {
                       if (checked != nullptr && checked->document().path() == path &&
                           checked->document().stamp() == known) {
                           FollowDisk(*checked, now);
                       }
                   };
               });
}

void DocumentTabs::FollowDisk(DocumentPage& page, const FileStamp& now)
{
    const bool isClosed = indexOf(&page) < 0;  // It is deleted soon.
    if (isClosed || page.document().IsSaving() || QApplication::activeModalWidget() != nullptr) {
        return;  // The next check finds the difference again.
    }
    page.FollowDisk(now, [this, &page] {
        if (page.document().IsModified()) {
            copies_.TextChanged(page);  // The text of a deleted file needs a recovery copy.
        }
        ShowState(page);
    });
}

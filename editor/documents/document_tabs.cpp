#include "document_tabs.h"

#include "action_icons.h"
#include "text_editor.h"

#include <QFileInfo>
#include <QTabBar>
#include <QToolButton>

namespace {

// Identifies a file by its canonical path, so that it is not opened twice under two names.
QString Identity(const QString& path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical;
}

}  // namespace

DocumentTabs::DocumentTabs(const std::string& recoveryRoot, QWidget* parent)
    : QTabWidget(parent), saver_(*this), copies_(recoveryRoot, *this)
{
    setDocumentMode(true);
    setMovable(true);
    setAccessibleName(tr("Documents"));
    connect(&saver_, &DocumentSaver::Saved, this, [this](DocumentPage& page) {
        copies_.Discard(page);
        ShowState(page);
        Q_EMIT Opened(QString::fromStdString(page.document().path()));
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
            paths.append(QString::fromStdString(path));
        }
    }
    return paths;
}

int DocumentTabs::IndexOf(const QString& path) const
{
    const QString wanted = Identity(path);
    for (int i = 0; i < count(); ++i) {
        const auto& other = PageAt(i)->document().path();
        if (!other.empty() && Identity(QString::fromStdString(other)) == wanted) {
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
    const QString title = document.Name() + (document.IsModified() ? " *" : "");
    setTabText(index, QString(title).replace('&', "&&"));
    setTabToolTip(index, QString::fromStdString(document.path()));
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
    const auto file = Document::Read(full.toStdString());
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
        auto& page = *PageAt(i);
        page.CheckDisk([this, &page] {
            if (page.document().IsModified()) {
                copies_.TextChanged(page);  // The text of a deleted file needs a recovery copy.
            }
            ShowState(page);
        });
    }
}

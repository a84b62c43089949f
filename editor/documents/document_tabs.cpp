#include "document_tabs.h"

#include "action_icons.h"
#include "text_editor.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QTabBar>
#include <QToolButton>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::seconds kCopyDelay{2};

// Identifies a file by its canonical path, so that it is not opened twice under two names.
QString Identity(const QString& path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical;
}

}  // namespace

DocumentTabs::DocumentTabs(const std::string& recoveryRoot, QWidget* parent)
    : QTabWidget(parent),
      recovery_(recoveryRoot, [this](const std::string& id, const std::string& error) {
          CopyFailed(id, QString::fromStdString(error));
      })
{
    setDocumentMode(true);
    setMovable(true);
    setAccessibleName(tr("Documents"));
    recoveryTimer_.setSingleShot(true);
    recoveryTimer_.setInterval(kCopyDelay);
    connect(&recoveryTimer_, &QTimer::timeout, this, &DocumentTabs::KeepCopies);
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
    connect(&page->editor(), &TextEditor::Changing, page, [this, page] { TextChanged(*page); });
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
    modifiedPages_.erase(page);
    recovery_.Discard(page->recoveryId());
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
    modifiedPages_.erase(&page);  // Loading the file is not a change.
    setCurrentWidget(&page);
    ShowState(page);
    page.editor().setFocus();
    Q_EMIT Opened(full);
    return true;
}

bool DocumentTabs::SaveFront()
{
    auto* const page = FrontPage();
    return page == nullptr || Save(*page);
}

bool DocumentTabs::SaveFrontAs()
{
    auto* const page = FrontPage();
    return page == nullptr || SaveAs(*page);
}

bool DocumentTabs::SaveAll()
{
    for (int i = 0; i < count(); ++i) {
        auto& page = *PageAt(i);
        if (page.document().IsModified() && !Save(page)) {
            return false;
        }
    }
    return true;
}

bool DocumentTabs::Save(DocumentPage& page)
{
    const auto& path = page.document().path();
    if (path.empty()) {
        return SaveAs(page);
    }
    // Do not overwrite another program's changes without asking.
    if (page.document().CheckDisk() == Document::DiskState::Changed) {
        const auto answer = QMessageBox::question(
            this, tr("Save"),
            tr("Another program has changed %1. Overwrite the file?").arg(page.document().Name()),
            QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Save) {
            return false;
        }
    }
    return Write(page, QString::fromStdString(path));
}

bool DocumentTabs::SaveAs(DocumentPage& page)
{
    setCurrentWidget(&page);
    const auto& document = page.document();
    QFileDialog dialog(this, tr("Save As"), {}, Document::FileDialogFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const bool isNew = document.path().empty();
    if (isNew || document.IsPython()) {
        dialog.setDefaultSuffix("py");
    }
    dialog.selectFile(isNew ? document.Name() : QString::fromStdString(document.path()));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return false;
    }
    const QString path = dialog.selectedFiles().constFirst();
    if (const int other = IndexOf(path); other >= 0 && PageAt(other) != &page) {
        Q_EMIT Failed(tr("%1 is open in another tab. Close that tab first.").arg(path));
        return false;
    }
    return Write(page, path);
}

bool DocumentTabs::Write(DocumentPage& page, const QString& path)
{
    const auto saved = page.document().SaveAs(path.toStdString());
    if (!saved) {
        const auto problem = QString::fromStdString(saved.error());
        if (page.document().encoding() == TextEncoding::Latin1) {
            return SaveAsUtf8(page, path, problem);
        }
        Q_EMIT Failed(problem);
        return false;
    }
    modifiedPages_.erase(&page);
    recovery_.Discard(page.recoveryId());
    page.HideMessage();
    ShowState(page);
    Q_EMIT Opened(path);
    return true;
}

// The text may contain characters that the file's encoding cannot represent.
bool DocumentTabs::SaveAsUtf8(DocumentPage& page, const QString& path, const QString& problem)
{
    const auto answer = QMessageBox::question(
        this, tr("Save"), problem + tr(".\n\nSave the file as UTF-8 instead?"),
        QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Save) {
        return false;
    }
    page.document().SetEncoding(TextEncoding::Utf8);
    return Write(page, path);
}

bool DocumentTabs::ConfirmClose(DocumentPage& page)
{
    if (!page.document().IsModified()) {
        return true;
    }
    setCurrentWidget(&page);
    const auto answer = QMessageBox::warning(
        this, tr("Close"), tr("%1 has unsaved changes.").arg(page.document().Name()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && Save(page));
}

bool DocumentTabs::Close(int index)
{
    auto* const page = PageAt(index);
    if (page == nullptr || !ConfirmClose(*page)) {
        return false;
    }
    RemovePage(indexOf(page));
    return true;
}

bool DocumentTabs::ConfirmCloseAll()
{
    for (int i = 0; i < count(); ++i) {
        if (!ConfirmClose(*PageAt(i))) {
            return false;
        }
    }
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
                TextChanged(page);  // The text of a deleted file needs a recovery copy.
            }
            ShowState(page);
        });
    }
}

void DocumentTabs::TextChanged(DocumentPage& page)
{
    modifiedPages_.insert(&page);
    if (!recoveryTimer_.isActive()) {
        recoveryTimer_.start();
    }
}

void DocumentTabs::KeepCopies()
{
    for (auto* const page : std::exchange(modifiedPages_, {})) {
        if (page->document().IsModified()) {
            recovery_.Keep(page->recoveryId(), page->document().Copy());
        } else {
            recovery_.Discard(page->recoveryId());  // The changes were undone.
        }
    }
}

// The copy is retried, but each error is reported only once.
void DocumentTabs::CopyFailed(const std::string& id, const QString& error)
{
    for (int i = 0; i < count(); ++i) {
        if (PageAt(i)->recoveryId() == id) {
            TextChanged(*PageAt(i));
        }
    }
    if (std::exchange(copyError_, error) != error) {
        Q_EMIT Failed(tr("Unsaved changes cannot be backed up: %1").arg(error));
    }
}

QStringList DocumentTabs::FindRecoverable()
{
    orphans_ = recovery_.Orphans();
    QStringList names;
    for (const auto& orphan : orphans_) {
        const auto& path = orphan.copy.path;
        names.append(path.empty() ? tr("an untitled document")
                                  : QFileInfo(QString::fromStdString(path)).fileName());
    }
    return names;
}

void DocumentTabs::Recover()
{
    for (const auto& orphan : std::exchange(orphans_, {})) {
        const int open =
            orphan.copy.path.empty() ? -1 : IndexOf(QString::fromStdString(orphan.copy.path));
        // Do not overwrite other unsaved changes.
        const bool replaces = open >= 0 && !PageAt(open)->document().IsModified();
        auto& page = replaces ? *PageAt(open) : AddPage();
        recovery_.Discard(page.recoveryId());
        page.SetRecoveryId(orphan.id);
        page.document().Recover(orphan.copy);
        setCurrentWidget(&page);
        ShowState(page);
    }
}

void DocumentTabs::DiscardRecovered()
{
    for (const auto& orphan : std::exchange(orphans_, {})) {
        recovery_.Discard(orphan.id);
    }
}

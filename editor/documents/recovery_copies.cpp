#include "recovery_copies.h"

#include "document_tabs.h"
#include "path_text.h"
#include "text_editor.h"

#include <QFileInfo>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::seconds kCopyDelay{2};
constexpr std::chrono::seconds kDiskPatience{5};

}  // namespace

RecoveryCopies::RecoveryCopies(const std::string& root, DocumentTabs& tabs)
    : tabs_(tabs), keeper_(root, [this](const std::string& id, const std::string& error) {
          CopyFailed(id, QString::fromStdString(error));
      })
{
    timer_.setSingleShot(true);
    timer_.setInterval(kCopyDelay);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Keep(); });
}

void RecoveryCopies::Discard(DocumentPage& page)
{
    Forget(page);
    keeper_.Discard(page.recoveryId());
}

void RecoveryCopies::TextChanged(DocumentPage& page)
{
    changed_.insert(&page);
    if (!timer_.isActive()) {
        timer_.start();
    }
}

void RecoveryCopies::Keep()
{
    for (auto* const page : std::exchange(changed_, {})) {
        if (page->document().IsModified()) {
            keeper_.Keep(page->recoveryId(), page->document().Copy());
        } else {
            keeper_.Discard(page->recoveryId());  // The changes were undone.
        }
    }
}

bool RecoveryCopies::KeepNow(DocumentPage& page)
{
    Forget(page);
    keeper_.Keep(page.recoveryId(), page.document().Copy());
    return keeper_.WaitFor(page.recoveryId(), kDiskPatience) && !changed_.contains(&page);
}

// The copy is retried, but each error is reported only once.
void RecoveryCopies::CopyFailed(const std::string& id, const QString& error)
{
    for (int i = 0; i < tabs_.count(); ++i) {
        if (tabs_.PageAt(i)->recoveryId() == id) {
            TextChanged(*tabs_.PageAt(i));
        }
    }
    if (id.empty()) {
        Q_EMIT tabs_.Failed(error);
    } else if (std::exchange(copyError_, error) != error) {
        Q_EMIT tabs_.Failed(DocumentTabs::tr("Unsaved changes cannot be backed up: %1").arg(error));
    }
}

QStringList RecoveryCopies::FindRecoverable()
{
    orphans_ = keeper_.Orphans();
    QStringList names;
    for (const auto& orphan : orphans_) {
        const auto& path = orphan.copy.path;
        names.append(path.empty() ? DocumentTabs::tr("an untitled document")
                                  : QFileInfo(PathToText(path)).fileName());
    }
    return names;
}

void RecoveryCopies::Recover()
{
    for (const auto& orphan : std::exchange(orphans_, {})) {
        const int open =
            orphan.copy.path.empty() ? -1 : tabs_.IndexOf(PathToText(orphan.copy.path));
        // Do not overwrite other unsaved changes.
        const bool replaces = open >= 0 && !tabs_.PageAt(open)->document().IsModified();
        auto& page = replaces ? *tabs_.PageAt(open) : tabs_.AddPage();
        keeper_.Discard(page.recoveryId());
        page.SetRecoveryId(orphan.id);
        page.document().Recover(orphan.copy);
        tabs_.setCurrentWidget(&page);
        tabs_.ShowState(page);
    }
}

void RecoveryCopies::DiscardRecovered()
{
    for (const auto& orphan : std::exchange(orphans_, {})) {
        keeper_.Discard(orphan.id);
    }
}

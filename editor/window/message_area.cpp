#include "message_area.h"

#include "message_bar.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr qsizetype kMaxLines = 5;

}  // namespace

MessageArea::MessageArea(QWidget* parent)
    : QWidget(parent),
      recovery_(new MessageBar(this)),
      messages_(new MessageBar(this)),
      slowFile_(new MessageBar(this))
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (auto* const bar : {recovery_, messages_, slowFile_}) {
        column->addWidget(bar);
    }
}

void MessageArea::Report(const QString& message)
{
    QStringList lines =
        messages_->IsAsking() ? messages_->accessibleName().split('\n') : QStringList();
    lines.removeAll(message);
    lines.append(message);
    const auto first = std::max<qsizetype>(lines.size() - kMaxLines, 0);
    messages_->Ask(lines.mid(first).join('\n'), {{tr("OK"), [] {}}});
}

void MessageArea::OfferRecovery(const QStringList& names, const std::function<void()>& recover,
                                const std::function<void()>& discard)
{
    recovery_->Ask(
        tr("The editor exited before these documents were saved: %1.").arg(names.join(", ")),
        {{tr("Recover"), recover}, {tr("Discard"), discard}, {tr("Later"), [] {}}});
}

void MessageArea::OfferSlowFile(const QString& path, qint64 line, const std::function<void()>& open)
{
    slowFile_->Ask(
        tr("Line %1 of %2 is so long that the editor would freeze for a moment at every key.")
            .arg(line)
            .arg(path),
        {{tr("Open Anyway"), open}, {tr("Do Not Open"), [] {}}});
}

void MessageArea::FocusMessage()
{
    for (const auto* const bar : {recovery_, messages_, slowFile_}) {
        if (bar->isVisible()) {
            bar->findChild<QPushButton*>()->setFocus();
            return;
        }
    }
}

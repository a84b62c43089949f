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
      longLine_(new MessageBar(this)),
      upload_(new MessageBar(this)),
      boards_(new MessageBar(this))
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (auto* const bar : {recovery_, messages_, longLine_, upload_, boards_}) {
        column->addWidget(bar);
    }
}

void MessageArea::Report(const QString& message)
{
    QStringList lines =
        messages_->IsShowing() ? messages_->accessibleName().split('\n') : QStringList();
    lines.removeAll(message);
    lines.append(message);
    const auto first = std::max<qsizetype>(lines.size() - kMaxLines, 0);
    messages_->ShowMessage(lines.mid(first).join('\n'), {{tr("OK"), [] {}}});
}

void MessageArea::OfferRecovery(const QStringList& names, const std::function<void()>& recover,
                                const std::function<void()>& discard)
{
    recovery_->ShowMessage(
        tr("The editor exited before these documents were saved: %1.").arg(names.join(", ")),
        {{tr("Recover"), recover}, {tr("Discard"), discard}, {tr("Later"), [] {}}});
}

void MessageArea::OfferLongLineFile(const QString& path, qint64 line,
                                    const std::function<void(const QString& path)>& open)
{
    if (!longLine_->IsShowing()) {
        longLineFiles_.clear();
    }
    longLineFiles_.removeAll(path);
    longLineFiles_.append(path);
    const QString text =
        longLineFiles_.size() == 1
            ? tr("Line %1 of %2 is too long to edit smoothly: the editor would pause at each "
                 "keystroke.")
                  .arg(line)
                  .arg(path)
            : tr("These files have lines that are too long to edit smoothly: %1.")
                  .arg(longLineFiles_.join(", "));
    const auto openAll = [files = longLineFiles_, open] { std::ranges::for_each(files, open); };
    longLine_->ShowMessage(text, {{tr("Open Anyway"), openAll}, {tr("Do Not Open"), [] {}}});
}

void MessageArea::Ask(Topic topic, const QString& question,
                      const std::vector<MessageChoice>& choices)
{
    BarOf(topic).ShowMessage(question, choices);
}

void MessageArea::Withdraw(Topic topic)
{
    BarOf(topic).hide();
}

void MessageArea::OfferLongLineText(const std::function<void()>& insert)
{
    longLineFiles_.clear();
    longLine_->ShowMessage(tr("The text has a line that is too long to edit smoothly: the editor "
                              "would pause at each keystroke."),
                           {{tr("Insert Anyway"), insert}, {tr("Do Not Insert"), [] {}}});
}

void MessageArea::FocusMessage()
{
    for (const auto* const bar : {recovery_, messages_, longLine_, upload_, boards_}) {
        if (bar->isVisible()) {
            bar->findChild<QPushButton*>()->setFocus();
            return;
        }
    }
}

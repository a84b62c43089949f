#include "command_activity.h"

#include "command_monitor.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

namespace {

constexpr QSize kBusySize(48, 8);

// A program may run for hours: the bar is drawn less often than its style wants, because that would
// cost more than everything else in the window.
class BusyBar final : public QProgressBar {
  public:
    using QProgressBar::QProgressBar;

  protected:
    bool event(QEvent* event) override
    {
        constexpr int kInterval = 160;  // ms
        if (event->type() == QEvent::StyleAnimationUpdate) {
            if (sinceDrawn_.isValid() && sinceDrawn_.elapsed() < kInterval) {
                event->accept();  // Otherwise the style would end the animation.
                return true;
            }
            sinceDrawn_.start();
        }
        return QProgressBar::event(event);
    }

  private:
    QElapsedTimer sinceDrawn_;
};

}  // namespace

CommandActivity::CommandActivity(const CommandMonitor& monitor, QWidget* parent)
    : QWidget(parent), monitor_(monitor), busy_(new BusyBar(this)), text_(new QLabel(this))
{
    text_->setObjectName("activity");
    busy_->setRange(0, 0);
    busy_->setTextVisible(false);
    busy_->setFixedSize(kBusySize);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(busy_);
    row->addWidget(text_);
    connect(&monitor_, &CommandMonitor::Changed, this, &CommandActivity::Show);
    Show();
}

void CommandActivity::Show()
{
    const bool isRunning = monitor_.IsRunning();
    const bool hasNote = isRunning && monitor_.command().kind == BoardCommand::Kind::Upload &&
                         !uploadNote_.isEmpty();
    busy_->setVisible(isRunning);
    busy_->setRange(0, monitor_.percent() ? 100 : 0);
    busy_->setValue(monitor_.percent().value_or(0));
    text_->setText(hasNote ? monitor_.Text() + " – " + uploadNote_ : monitor_.Text());
}

#include "control_tool_bar.h"

#include "action_icons.h"
#include "run_control.h"

#include <QAction>

#include <utility>

ControlToolBar::ControlToolBar(QWidget* parent) : QToolBar(tr("Tools"), parent)
{
    setObjectName("tools");
    setMovable(false);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setIconSize(QSize(16, 16));
    setContextMenuPolicy(Qt::PreventContextMenu);
}

QAction* ControlToolBar::AddButton(Action icon, const QString& text,
                                   const std::function<void()>& action)
{
    auto* const added = addAction(ActionIcon(icon), text);
    connect(added, &QAction::triggered, this, action);
    return added;
}

void ControlToolBar::ShowControls(const std::vector<std::string>& names)
{
    if (names == shown_) {
        return;
    }
    shown_ = names;
    for (auto* const control : std::exchange(controls_, {})) {
        removeAction(control);
        control->deleteLater();
    }
    for (const auto& name : names) {
        controls_.push_back(AddControl(QString::fromStdString(name)));
    }
}

QAction* ControlToolBar::AddStop(const std::function<void()>& action)
{
    stop_ = AddButton(Action::Stop, tr("Stop"), action);
    stop_->setEnabled(false);
    return stop_;
}

void ControlToolBar::DescribeControls(const QString& toolTip)
{
    controlToolTip_ = toolTip;
    for (auto* const control : controls_) {
        widgetForAction(control)->setToolTip(toolTip);
    }
}

QAction* ControlToolBar::AddControl(const QString& name)
{
    auto* const control = new RunControl(name, this);
    connect(control, &RunControl::clicked, this, &ControlToolBar::ControlPressed);
    // Queued: the menu runs an event loop, which must not start inside the press event's handler.
    connect(
        control, &RunControl::MenuRequested, control,
        [this, control] { Q_EMIT MenuRequested(*control); }, Qt::QueuedConnection);
    control->setToolTip(controlToolTip_);
    return insertWidget(stop_, control);
}

const QWidget& ControlToolBar::FirstControl() const
{
    const QWidget* const bar = this;
    return controls_.empty() ? *bar : *widgetForAction(controls_.front());
}

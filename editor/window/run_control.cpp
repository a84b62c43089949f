#include "run_control.h"

#include "action_icons.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionToolButton>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kLongPress{500};

}  // namespace

RunControl::RunControl(const QString& name, QWidget* parent) : QToolButton(parent)
{
    setText(name);
    setAccessibleName(name);
    setIcon(ActionIcon(Action::Run));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::MenuButtonPopup);
    held_.setSingleShot(true);
    held_.setInterval(kLongPress);
    connect(&held_, &QTimer::timeout, this, [this] {
        if (isDown()) {
            RequestMenu();
        }
    });
}

void RunControl::initStyleOption(QStyleOptionToolButton* option) const
{
    QToolButton::initStyleOption(option);
    option->features |= QStyleOptionToolButton::HasMenu;  // The plug-in shows the menu.
}

bool RunControl::IsOnArrow(const QPoint& at) const
{
    QStyleOptionToolButton option;
    initStyleOption(&option);
    return style()
        ->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButtonMenu, this)
        .contains(at);
}

// Releases the button, so that the mouse release that follows is not a click.
void RunControl::RequestMenu()
{
    held_.stop();
    setDown(false);
    Q_EMIT MenuRequested();
}

void RunControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && IsOnArrow(event->position().toPoint())) {
        return RequestMenu();
    }
    QToolButton::mousePressEvent(event);
    if (isDown()) {
        held_.start();
    }
}

void RunControl::mouseReleaseEvent(QMouseEvent* event)
{
    held_.stop();
    QToolButton::mouseReleaseEvent(event);
}

void RunControl::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up) {
        return RequestMenu();
    }
    QToolButton::keyPressEvent(event);
}

void RunControl::contextMenuEvent(QContextMenuEvent* /*event*/)
{
    RequestMenu();
}

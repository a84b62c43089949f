#include "board_button.h"

#include "action_icons.h"
#include "board_monitor.h"

BoardButton::BoardButton(const BoardMonitor& board, QMenu* menu, QWidget* parent)
    : QToolButton(parent)
{
    setObjectName("board");
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::InstantPopup);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setIcon(ActionIcon(Action::Board));
    setMenu(menu);
    connect(&board, &BoardMonitor::Changed, this, [this, &board] { ShowBoard(board); });
    ShowBoard(board);
}

void BoardButton::ShowBoard(const BoardMonitor& monitor)
{
    using Kind = BoardMonitor::Kind;
    const auto& [kind, port] = monitor.board();
    const QString node = QString::fromStdString(port.node);
    const QString text = kind == Kind::Real      ? tr("Board on %1").arg(node)
                         : kind == Kind::Virtual ? tr("Virtual board")
                         : kind == Kind::Missing ? tr("Board %1 is not attached").arg(node)
                                                 : tr("No board");
    QStringList tip{port.node.empty() ? text : DescribePort(port)};
    if (!monitor.firmware().isEmpty()) {
        tip.append(monitor.firmware());
    }
    setText(text);
    setAccessibleName(text);
    setToolTip(tip.join('\n'));
}

#include "board_menu.h"

#include "board_actions.h"

#include <QActionGroup>

#include <optional>

BoardMenu::BoardMenu(BoardActions& actions, BoardMonitor& board, QWidget* parent)
    : QMenu(tr("&Board"), parent), actions_(actions), board_(board), boards_(nullptr)
{
    boardsEnd_ = addSeparator();
    Add(tr("&Restart"), [this] { actions_.Restart(); });
    Add(tr("Run &main.py"), [this] { actions_.RunMain(); });
    Add(tr("&Install Package…"), [this] { actions_.InstallPackage(); });
    addSeparator();
    upload_ = Add(tr("&Upload Files…"), [this] { actions_.UploadFiles(); });
    Add(tr("U&pload Folder…"), [this] { actions_.UploadFolder(); });
    Add(tr("Do&wnload…"), [this] { actions_.Download(); });
    Add(tr("&Device Window"), [this] { Q_EMIT DeviceWindowRequested(); });
    addSeparator();
    AddVirtualBoard();
    connect(this, &QMenu::aboutToShow, this, &BoardMenu::ListBoards);
}

QAction* BoardMenu::AddOpenFile(const std::function<void(const std::string& path)>& open)
{
    auto* const added = new QAction(tr("&Open File on Board…"), this);
    connect(added, &QAction::triggered, this, [this, open] { actions_.OpenFile(open); });
    insertAction(upload_, added);
    return added;
}

QAction* BoardMenu::Add(const QString& text, const std::function<void()>& action)
{
    auto* const added = addAction(text);
    connect(added, &QAction::triggered, this, action);
    return added;
}

void BoardMenu::AddVirtualBoard()
{
    auto* const attach = Add(tr("&Attach Virtual Board"), [this] { actions_.UseVirtualBoard(); });
    auto* const detach =
        Add(tr("De&tach Virtual Board"), [this] { actions_.DetachVirtualBoard(); });
    Add(tr("Open Virtual Board &Folder"), [this] { actions_.OpenBoardFolder(); });
    connect(this, &QMenu::aboutToShow, this, [this, attach, detach] {
        attach->setEnabled(!board_.HasVirtualBoard());
        detach->setEnabled(board_.HasVirtualBoard());
    });
}

void BoardMenu::ListBoards()
{
    delete boards_;  // With its actions.
    boards_ = new QActionGroup(this);
    const bool isVirtual = board_.HasVirtualBoard();
    const auto& choice = board_.choice();
    AddBoard(tr("Any Board"), !isVirtual && !choice, [this] { actions_.UseBoard(std::nullopt); });
    bool isListed = false;
    for (const auto& port : board_.ports()) {
        const bool isChosen = choice && IsSameBoard(*choice, port);
        isListed = isListed || isChosen;
        AddBoard(DescribePort(port), !isVirtual && isChosen,
                 [this, port] { actions_.UseBoard(port); });
    }
    if (choice && !isListed) {
        const bool isMissing = board_.board().kind == BoardMonitor::Kind::Missing;
        const QString text = isMissing ? tr("%1 – not attached") : QString("%1");
        AddBoard(text.arg(DescribePort(*choice)), !isVirtual,
                 [this, port = *choice] { actions_.UseBoard(port); });
    }
    AddBoard(tr("Virtual Board"), isVirtual, [this] { actions_.UseVirtualBoard(); });
}

void BoardMenu::AddBoard(const QString& text, bool isChosen, const std::function<void()>& choose)
{
    auto* const action = new QAction(QString(text).replace('&', "&&"), boards_);
    action->setCheckable(true);
    action->setChecked(isChosen);
    connect(action, &QAction::triggered, this, choose);
    insertAction(boardsEnd_, action);
}

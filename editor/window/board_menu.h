#pragma once

#include <QKeySequence>
#include <QMenu>

#include <functional>

class BoardActions;
class BoardMonitor;
class QActionGroup;

// The Board menu, which also opens from the status bar. Its list of boards is up to date when it
// opens. [ui]
class BoardMenu final : public QMenu {
    Q_OBJECT

  public:
    // The referenced objects must outlive the menu.
    BoardMenu(BoardActions& actions, BoardMonitor& board, QWidget* parent);

  Q_SIGNALS:
    void FolderRequested();
    void DeviceWindowRequested();

  private:
    QAction* Add(const QString& text, const std::function<void()>& action);
    void AddVirtualBoard();
    void ListBoards();
    void AddBoard(const QString& text, bool isChosen, const std::function<void()>& choose);

    BoardActions& actions_;
    BoardMonitor& board_;
    QAction* boardsEnd_;    // The separator below the list.
    QActionGroup* boards_;  // Null while there is no list.
};

#pragma once

#include <QMenu>

#include <functional>
#include <string>

class BoardActions;
class BoardMonitor;
class QActionGroup;

// The Board menu, which also opens from a BoardButton. Its list of boards is up to date when it
// opens. [ui]
class BoardMenu final : public QMenu {
    Q_OBJECT

  public:
    // The referenced objects must outlive the menu.
    BoardMenu(BoardActions& actions, BoardMonitor& board, QWidget* parent);

    // Adds an item that opens a file of the board in the host, and returns it. Owned by the menu.
    QAction* AddOpenFile(const std::function<void(const std::string& path)>& open);

  Q_SIGNALS:
    void DeviceWindowRequested();

  private:
    QAction* Add(const QString& text, const std::function<void()>& action);
    void AddVirtualBoard();
    void ListBoards();
    void AddBoard(const QString& text, bool isChosen, const std::function<void()>& choose);

    BoardActions& actions_;
    BoardMonitor& board_;
    QAction* boardsEnd_;  // The separator below the list.
    QAction* upload_;
    QActionGroup* boards_;  // Null while there is no list.
};

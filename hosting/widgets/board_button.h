#pragma once

#include <QToolButton>

class BoardMonitor;

// Shows which board is used, and opens a menu. [ui]
class BoardButton final : public QToolButton {
    Q_OBJECT

  public:
    // `menu` is not owned. `board` must outlive the button.
    BoardButton(const BoardMonitor& board, QMenu* menu, QWidget* parent);

  private:
    void ShowBoard(const BoardMonitor& monitor);
};

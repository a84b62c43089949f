#pragma once

#include "board_monitor.h"

#include <QStatusBar>

class DocumentPage;
class QLabel;
class QMenu;
class QToolButton;

// Where the caret is and how the document is written, what a command would act on, and the board.
// Used on the user-interface thread.
class EditorStatusBar final : public QStatusBar {
    Q_OBJECT

  public:
    // `boardMenu` opens at the board; not owned.
    EditorStatusBar(QMenu* boardMenu, QWidget* parent);

    // Null when no document is open.
    void ShowDocument(DocumentPage* page);
    // Full paths; empty for none.
    void ShowProject(const QString& folder, const QString& target);
    void ShowBoard(const BoardMonitor::Board& board);

  private:
    QLabel* position_;
    QLabel* target_;
    QLabel* format_;
    QToolButton* board_;
};

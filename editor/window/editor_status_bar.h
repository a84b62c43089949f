#pragma once

#include "board_monitor.h"

#include <QStatusBar>

class DocumentPage;
class QLabel;
class QMenu;
class QToolButton;

// Shows the caret's position, the document's format, the target and the board. [ui]
class EditorStatusBar final : public QStatusBar {
    Q_OBJECT

  public:
    // `boardMenu` opens from the board's button; not owned.
    EditorStatusBar(QMenu* boardMenu, QWidget* parent);

    // `page` is null when no document is open.
    void ShowDocument(DocumentPage* page);
    // Full paths; empty if there is none.
    void ShowProject(const QString& folder, const QString& target);
    void ShowBoard(const BoardMonitor::Board& board);

  private:
    QLabel* position_;
    QLabel* target_;
    QLabel* format_;
    QToolButton* board_;
};

#pragma once

#include "board_monitor.h"

#include <QStatusBar>

class DocumentPage;
class QLabel;
class QMenu;
class QProgressBar;
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
    // What runs on the board, or how it ended; empty for nothing.
    void ShowActivity(const QString& text, bool isRunning);
    void ShowBoard(const BoardMonitor& monitor);

  private:
    QLabel* position_;
    QProgressBar* busy_;
    QLabel* activity_;
    QLabel* target_;
    QLabel* format_;
    QToolButton* board_;
};
